#pragma once

#include <QHash>
#include <QVariant>
#include <chrono>
#include <future>
#include <memory>
#include <vector>

#include "platform/BackgroundJobs.h"
#include "platform/Preferences.h"

/// Preferences in one text file with lines of the form "KEY = TYPE VALUE", which a person can read and edit; keys begin
/// with "glimmet.". Main thread only, and never blocks it: all file access happens on the queue.
///
/// Changes are merged into the current file, so edits by others to other keys are preserved. The file is written under
/// a temporary name, flushed and renamed into place. Lines that cannot be parsed stay untouched until their key is set;
/// a file that is too large or unreadable is renamed, not overwritten. A failed write is retried with delays that grow
/// to a minute, and with every later change.
class FilePreferences : public Preferences {
 public:
    /// `exclusive` locks the file for this program; with `readOnly`, changes stay in memory.
    enum class Access { exclusive, readOnly };

    /// Starts reading the file. `queue` and `loop` must outlive the object, and `loop` the queue.
    FilePreferences(const QString& path, Access access, SerialQueue& queue, MainLoop& loop);
    /// Calls close().
    ~FilePreferences() override;

    /// Waits for `timeout` at most until the file has been read or found to be locked. After that, whenRead() and
    /// onTaken report it.
    void waitUntilRead(std::chrono::milliseconds timeout);
    /// Tries once more to write pending changes, and unlocks the file; waits two seconds at most. Later changes stay in
    /// memory.
    void close();

    /// Called if another program has locked the file; it is then neither read nor written.
    std::function<void()> onTaken;

    /// The path of the user's preferences file.
    static QString defaultPath();

    bool isRead() const override { return read_; }
    void whenRead(std::function<void()> then) override;

    bool boolean(const QString& key) const override;
    std::optional<double> number(const QString& key) const override;
    std::optional<QString> text(const QString& key) const override;
    std::optional<QByteArray> data(const QString& key) const override;
    std::optional<QList<QByteArray>> dataList(const QString& key) const override;

    void setBoolean(const QString& key, bool value) override { set(key, value); }
    void setNumber(const QString& key, double value) override { set(key, value); }
    void setText(const QString& key, const QString& value) override { set(key, value); }
    void setData(const QString& key, const QByteArray& value) override { set(key, value); }
    void setDataList(const QString& key, const QList<QByteArray>& value) override {
        set(key, QVariant::fromValue(value));
    }

 private:
    class File;
    /// The result of opening the file.
    struct Contents {
        QHash<QString, QVariant> values;
        bool taken = false;  // another program has locked the file
    };

    template <class T>
    std::optional<T> get(const QString& key) const;
    void set(const QString& key, const QVariant& value);
    void takeWhatWasRead();
    void write();
    void written(bool well);

    const Access access_;
    SerialQueue& queue_;
    MainLoop& loop_;
    QHash<QString, QVariant> values_;
    bool read_ = false;
    std::vector<std::function<void()>> whenRead_;
    double pause_;  // seconds until the next attempt to write
    TimerHandle nextAttempt_;
    std::shared_ptr<File> file_;
    std::future<Contents> contents_;  // valid until taken over
    BackgroundJobs jobs_;
};
