#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QVariant>
#include <vector>

// The text of a preferences file: lines of the form "KEY = TYPE VALUE". Any thread.

/// Bytes; a larger file is not taken for one of ours, and none is written.
constexpr qint64 kMaxPreferences = 16 * 1024 * 1024;

/// A key and the whole line that belongs to it, without its end.
struct PreferenceLine {
    QString key;
    QByteArray bytes;
};

/// The line for `value`, which is a bool, a double, a QString, a QByteArray or a QList<QByteArray>. Empty when it would
/// be longer than what is read again.
QByteArray preferenceLine(const QString& key, const QVariant& value);

/// The values in `contents`, as far as they can be read: of keys that begin with "glimmet.", the first thousand of
/// them, and in lines that are no longer than 4 MB and have their end. Of a key that stands twice the later line holds.
QHash<QString, QVariant> readPreferences(const QByteArray& contents);

/// `contents` with each of `lines` in the place of those with its key, or at the end. All else stays byte for byte; so
/// does a last line without an end, which stays last.
QByteArray withLines(const QByteArray& contents, const std::vector<PreferenceLine>& lines);
