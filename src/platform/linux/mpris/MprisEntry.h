#pragma once

#include <gio/gio.h>

#include <QString>
#include <QUrl>

/// What a player has told of itself.
struct MprisEntry {
    enum class Status { stopped, paused, playing };

    QString service;      ///< its bus name
    QString application;  ///< the Players port's name for it
    Status status = Status::stopped;
    QString title, artist, album;  ///< plain lines of limited length
    QUrl address;                  ///< of what it plays
    QUrl cover;
    bool answers = true;     ///< to what it was last asked
    quint64 lastPlayed = 0;  ///< grows with every start of a track of any player; 0: has not played yet

    friend bool operator==(const MprisEntry&, const MprisEntry&) = default;
};

/// Takes over what an "a{sv}" says about MPRIS's player properties. What it does not mention stays; values of another
/// type count as empty. Any thread.
void readPlayer(GVariant* properties, MprisEntry& entry);

/// The text value of `key` in an "a{sv}" as a plain line; empty if there is none.
QString plainText(GVariant* properties, const char* key);
