#include "platform/linux/FilePreferences.h"

#include <QStandardPaths>
#include <algorithm>
#include <future>
#include <mutex>
#include <utility>

#include "platform/linux/AtomicFile.h"
#include "platform/linux/PreferenceLines.h"

namespace {

constexpr double kFirstPause = 1, kMaxPause = 60;  // seconds
constexpr std::chrono::seconds kCloseTimeout(2);

}  // namespace

/// The part that is shared with the queue: the file, and the lines that wait to be written.
class FilePreferences::File {
 public:
    /// Main thread, once: the result of open().
    std::future<Contents> contents() { return promise_.get_future(); }

    /// Queue; before anything else.
    void open(const QString& path, Access access) {
        Contents found;
        file_.emplace(path);
        found.taken = access == Access::exclusive && !file_->lock();
        mayWrite_ = access == Access::exclusive && !found.taken;
        if (!found.taken) known_ = file_->read(kMaxPreferences).value_or(QByteArray());
        found.values = readPreferences(known_);
        promise_.set_value(std::move(found));
    }

    /// Queue.
    void close() {
        mayWrite_ = false;
        file_.reset();
    }

    /// Main thread. A later line replaces an earlier one for the same key.
    void set(PreferenceLine line) {
        const std::lock_guard lock(mutex_);
        replaceLine(waiting_, std::move(line));
    }

    /// Queue. False on failure; the lines then wait for the next call.
    bool write() {
        std::vector<PreferenceLine> lines;
        {
            const std::lock_guard lock(mutex_);
            lines = std::exchange(waiting_, {});
        }
        if (lines.empty() || !mayWrite_) return true;
        // If the file is gone or unreadable, fall back on what it contained before.
        known_ = file_->read(kMaxPreferences).value_or(known_);
        QByteArray contents = withLines(known_, lines);
        if (contents.size() <= kMaxPreferences && file_->replace(contents)) {
            known_ = std::move(contents);
            return true;
        }
        const std::lock_guard lock(mutex_);
        std::swap(lines, waiting_);
        for (PreferenceLine& later : lines) replaceLine(waiting_, std::move(later));
        return false;
    }

 private:
    static void replaceLine(std::vector<PreferenceLine>& lines, PreferenceLine line) {
        const auto same = [&](const PreferenceLine& other) { return other.key == line.key; };
        const auto found = std::find_if(lines.begin(), lines.end(), same);
        if (found == lines.end())
            lines.push_back(std::move(line));
        else
            *found = std::move(line);
    }

    std::promise<Contents> promise_;
    std::optional<AtomicFile> file_;
    QByteArray known_;  // what the file held when it was last read or written
    bool mayWrite_ = false;
    std::mutex mutex_;
    std::vector<PreferenceLine> waiting_;
};

FilePreferences::FilePreferences(const QString& path, Access access, SerialQueue& queue, MainLoop& loop)
    : access_(access),
      queue_(queue),
      loop_(loop),
      pause_(kFirstPause),
      file_(std::make_shared<File>()),
      contents_(file_->contents()),
      jobs_(queue, loop) {
    jobs_.run([file = file_, path, access] { file->open(path, access); }, [this] { takeWhatWasRead(); });
}

FilePreferences::~FilePreferences() {
    close();
}

void FilePreferences::waitUntilRead(std::chrono::milliseconds timeout) {
    if (contents_.valid() && contents_.wait_for(timeout) == std::future_status::ready) takeWhatWasRead();
}

void FilePreferences::takeWhatWasRead() {
    if (!contents_.valid()) return;
    Contents found = contents_.get();
    if (found.taken) {
        if (onTaken) onTaken();
        return;
    }
    // Values set in the meantime take precedence.
    for (auto value = found.values.begin(); value != found.values.end(); ++value) {
        if (!values_.contains(value.key())) values_.insert(value.key(), value.value());
    }
    read_ = true;
    for (const auto& then : std::exchange(whenRead_, {})) then();
}

void FilePreferences::whenRead(std::function<void()> then) {
    if (read_)
        then();
    else
        whenRead_.push_back(std::move(then));
}

void FilePreferences::close() {
    const auto reached = std::make_shared<std::promise<void>>();
    queue_.run([file = file_, reached] {
        file->write();
        file->close();
        reached->set_value();
    });
    reached->get_future().wait_for(kCloseTimeout);
}

QString FilePreferences::defaultPath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/glimmet/preferences");
}

template <class T>
std::optional<T> FilePreferences::get(const QString& key) const {
    const auto found = values_.find(key);
    if (found == values_.end() || found->metaType() != QMetaType::fromType<T>()) return {};
    return found->value<T>();
}

bool FilePreferences::boolean(const QString& key) const {
    return get<bool>(key).value_or(false);
}

std::optional<double> FilePreferences::number(const QString& key) const {
    return get<double>(key);
}

std::optional<QString> FilePreferences::text(const QString& key) const {
    return get<QString>(key);
}

std::optional<QByteArray> FilePreferences::data(const QString& key) const {
    return get<QByteArray>(key);
}

std::optional<QList<QByteArray>> FilePreferences::dataList(const QString& key) const {
    return get<QList<QByteArray>>(key);
}

void FilePreferences::set(const QString& key, const QVariant& value) {
    values_.insert(key, value);
    QByteArray line = preferenceLine(key, value);
    if (access_ == Access::readOnly || line.isEmpty()) return;
    file_->set({key, std::move(line)});
    write();
}

void FilePreferences::write() {
    jobs_.run([file = file_] { return file->write(); }, [this](bool well) { written(well); });
}

void FilePreferences::written(bool well) {
    if (well) {
        nextAttempt_.cancel();
        pause_ = kFirstPause;
        return;
    }
    const bool first = !nextAttempt_;
    nextAttempt_ = loop_.after(pause_, [this] { write(); });
    pause_ = std::min(2 * pause_, kMaxPause);
    if (first && onSaveFailed) onSaveFailed();
}
