#pragma once

#include <QHash>
#include <QVariant>
#include <chrono>
#include <future>
#include <memory>
#include <vector>

#include "platform/BackgroundJobs.h"
#include "platform/Preferences.h"

/// Preferences in one file of text lines, "KEY = TYPE VALUE", that a person can read and mend; keys begin with
/// "glimmet.". Main thread only, which never waits for the disk: all that touches the file is done on the queue.
///
/// What was set is put into the file as it is then, which somebody else may have changed in the meantime: of their
/// lines those stay that were not set here. The file is written whole, under a temporary name, flushed and renamed into
/// place. What cannot be read stays in it byte for byte until its key is set; a file too large or not readable at all
/// is kept beside the new one under a name of its own. A write that fails is tried again after pauses that grow to a
/// minute, and with every later change.
class FilePreferences : public Preferences {
 public:
    /// `exclusive` keeps the file for this program; with `readOnly` what is set stays in memory.
    enum class Access { exclusive, readOnly };

    /// Begins to read the file. `queue` and `loop` must outlive the object, and `loop` the queue.
    FilePreferences(const QString& path, Access access, SerialQueue& queue, MainLoop& loop);
    /// Leaves nothing unwritten that can be written within two seconds.
    ~FilePreferences() override;

    /// Waits until the file has been read, or another program turned out to keep it, for `patience` at most. Afterwards
    /// the answer comes through whenRead() and onTaken.
    void waitUntilRead(std::chrono::milliseconds patience);
    /// Tries once more to write what is not written, and lets the file go, for two seconds at most. What is set later
    /// stays in memory.
    void close();

    /// Called when it turns out that another program keeps the file: then it is not read, and never written.
    std::function<void()> onTaken;

    /// Where the user's preferences belong.
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
    /// What is found when the file is opened.
    struct Contents {
        QHash<QString, QVariant> values;
        bool taken = false;  // another program keeps the file
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
