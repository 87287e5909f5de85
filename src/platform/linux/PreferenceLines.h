#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QVariant>
#include <vector>

// The text of a preferences file: lines of the form "KEY = TYPE VALUE". Any thread.

/// Bytes; larger files are neither read nor written.
constexpr qint64 kMaxPreferences = 16 * 1024 * 1024;

/// A key and its complete line, without the line end.
struct PreferenceLine {
    QString key;
    QByteArray bytes;
};

/// The line for `value`, which is a bool, a double, a QString, a QByteArray or a QList<QByteArray>. Empty if it would
/// be too long to be read back.
QByteArray preferenceLine(const QString& key, const QVariant& value);

/// The readable values in `contents`: of the first thousand keys that begin with "glimmet.", in complete lines of up to
/// 4 MB. If a key occurs twice, the later line counts.
QHash<QString, QVariant> readPreferences(const QByteArray& contents);

/// `contents` with each of `lines` in place of those with its key, or at the end. Everything else stays byte for byte;
/// a last line without an end stays last.
QByteArray withLines(const QByteArray& contents, const std::vector<PreferenceLine>& lines);
