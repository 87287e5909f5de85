#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <functional>
#include <optional>

/// The user's preferences: named values of a few types, kept across restarts. Main thread only.
///
/// A setter takes effect in memory at once and is written through in the background, again and again if need be; each
/// key holds its old or its new value on disk whenever the process dies. A key that was never written, holds another
/// type or cannot be read is absent.
class Preferences {
 public:
    virtual ~Preferences() = default;

    /// Whether what is stored has been read. Until then only what was set here is known; it goes before what is stored,
    /// and nothing is written.
    virtual bool isRead() const = 0;
    /// Calls `then` on the main thread once isRead(): at once if it is so already.
    virtual void whenRead(std::function<void()> then) = 0;
    /// Called on the main thread when something that was set could not be written; not again until all has been.
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
