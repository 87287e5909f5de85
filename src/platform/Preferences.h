#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

/// The user's preferences: named values of a few types, kept across restarts. Main thread only.
///
/// A setter takes effect in memory at once and is written through in the background; each key holds its old or its new
/// value on disk whenever the process dies. A key that was never written, holds another type or cannot be read is
/// absent.
class Preferences {
 public:
    virtual ~Preferences() = default;

    /// False when absent.
    virtual bool boolean(const QString& key) const = 0;
    virtual std::optional<double> number(const QString& key) const = 0;
    virtual std::optional<QString> text(const QString& key) const = 0;
    virtual std::optional<QByteArray> data(const QString& key) const = 0;
    virtual std::optional<QList<QByteArray>> dataList(const QString& key) const = 0;

    virtual void setBoolean(const QString& key, bool value) = 0;
    virtual void setNumber(const QString& key, double value) = 0;
    virtual void setText(const QString& key, const QString& value) = 0;
    virtual void setData(const QString& key, const QByteArray& value) = 0;
    virtual void setDataList(const QString& key, const QList<QByteArray>& value) = 0;
};
