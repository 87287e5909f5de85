#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <functional>
#include <optional>

/// The user's preferences: named values of a few types that persist across restarts. Main thread only.
///
/// A setter takes effect in memory at once and is written in the background, with retries; whenever the process dies,
/// each key has its old or its new value on disk. A key that was never written, has another type or cannot be read is
/// absent.
class Preferences {
 public:
    virtual ~Preferences() = default;

    /// Whether the stored values have been read. Until then only values set here are known, which take precedence over
    /// stored ones, and nothing is written.
    virtual bool isRead() const = 0;
    /// Calls `then` on the main thread once isRead(); immediately if it already is.
    virtual void whenRead(std::function<void()> then) = 0;
    /// Called on the main thread when writing fails; not again until everything has been written.
    std::function<void()> onSaveFailed;

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
