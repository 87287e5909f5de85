#pragma once

#include <QList>
#include <functional>
#include <memory>
#include <vector>

#include "platform/linux/mpris/BusThread.h"
#include "platform/linux/mpris/MprisEntry.h"

/// Keeps up with the media players on the session bus by their signals. Never starts a program.
class MprisWatch : public BusThread {
 public:
    using Report = std::function<void(const QList<MprisEntry>&)>;

    /// `report` is called on the bus's thread with all players when any of them has changed: a moment later, and at
    /// most five times a second.
    explicit MprisWatch(Report report) : report_(std::move(report)) {}

    // Any thread:

    /// Calls a method of the player without parameters.
    void tell(const QString& service, const char* method);
    /// Calls its Seek method.
    void seek(const QString& service, qint64 microseconds);

 private:
    struct Player {
        QByteArray owner;  // its unique name on the bus
        MprisEntry entry;
        bool isIdentified = false;  // has said what it is
    };

    void connected() override;
    void disconnected() override;
    void list();
    void listLater();
    void ownerChanged(GVariant* parameters);
    void propertiesChanged(const char* sender, GVariant* parameters);
    void add(const QByteArray& service, const QByteArray& owner);
    /// The player with this bus name; if it is given, only with this owner.
    Player* find(const QString& service, const QByteArray& owner = {});
    void askIdentity(const Player& player);
    void askAgainLater();
    void askState(const Player& player);
    void tellLater(const QString& service, const char* method, std::function<GVariant*()> arguments);
    void setEntry(Player& player, MprisEntry entry);
    void changed();
    void reportNow();

    Report report_;
    std::vector<Player> players_;
    quint64 tracksStarted_ = 0;
    int askPause_ = 0;  // milliseconds
    Timer reportTimer_, listTimer_, askTimer_;
    bool hasChanged_ = false;  // since the last report
};
