#pragma once

#include <sys/mman.h>

#include <QFile>
#include <QHash>
#include <QSet>
#include <QStringList>
#include <QVariant>

#include "platform/BackgroundQueue.h"
#include "platform/Descriptor.h"
#include "platform/DragPasteboard.h"
#include "platform/Drop.h"
#include "platform/FileIcons.h"
#include "platform/FileReferences.h"
#include "platform/Pasteboard.h"
#include "platform/Preferences.h"
#include "platform/Sharing.h"
#include "platform/Sounds.h"
#include "platform/Worker.h"
#include "platform/Workspace.h"

/// Preferences that live as long as the object; `writes` counts what was set.
class MemoryPreferences : public Preferences {
 public:
    bool isRead() const override { return read; }
    void whenRead(std::function<void()> then) override { read ? then() : waiting.append(std::move(then)); }
    /// What is stored has been read after all.
    void arrive() {
        read = true;
        while (!waiting.isEmpty()) waiting.takeFirst()();
    }

    bool boolean(const QString& key) const override { return get<bool>(key).value_or(false); }
    std::optional<double> number(const QString& key) const override { return get<double>(key); }
    std::optional<QString> text(const QString& key) const override { return get<QString>(key); }
    std::optional<QByteArray> data(const QString& key) const override { return get<QByteArray>(key); }
    std::optional<QList<QByteArray>> dataList(const QString& key) const override { return get<QList<QByteArray>>(key); }

    void setBoolean(const QString& key, bool value) override { set(key, value); }
    void setNumber(const QString& key, double value) override { set(key, value); }
    void setText(const QString& key, const QString& value) override { set(key, value); }
    void setData(const QString& key, const QByteArray& value) override { set(key, value); }
    void setDataList(const QString& key, const QList<QByteArray>& value) override {
        set(key, QVariant::fromValue(value));
    }

    QHash<QString, QVariant> values;
    int writes = 0;
    bool read = true;
    QList<std::function<void()>> waiting;

 private:
    template <class T>
    std::optional<T> get(const QString& key) const {
        const auto found = values.find(key);
        if (found == values.end() || found->metaType() != QMetaType::fromType<T>()) return {};
        return found->value<T>();
    }
    void set(const QString& key, const QVariant& value) {
        values[key] = value;
        ++writes;
    }
};

/// References are paths with "id:" before them, or without while the disk is silent. Files named in `missing` do not
/// exist, and those in `silent` are on a disk that answers when answer() is called.
class MemoryFiles : public FileReferences {
 public:
    std::optional<QByteArray> plain(const QUrl& file) const override {
        return file.isLocalFile() ? std::optional(file.toLocalFile().toUtf8()) : std::nullopt;
    }
    void bookmark(const QUrl& file, std::function<void(const std::optional<QByteArray>&)> done) override {
        const QString path = file.toLocalFile();
        ask(path,
            [this, path, done] { done(missing.contains(path) ? std::nullopt : std::optional("id:" + path.toUtf8())); });
    }
    void resolve(const QByteArray& bookmark, std::function<void(const std::optional<QUrl>&)> done) override {
        const QString path = QString::fromUtf8(bookmark.mid(bookmark.indexOf('/')));
        ask(path, [this, path, bookmark, done] {
            const QString now = bookmark.startsWith("id:") ? renamed.value(path, path) : path;
            done(missing.contains(now) ? std::nullopt : std::optional(QUrl::fromLocalFile(now)));
        });
    }
    void answer() {
        silent.clear();
        while (!waiting.isEmpty()) waiting.takeFirst()();
    }

    QSet<QString> missing, silent;
    QHash<QString, QString> renamed;

 private:
    void ask(const QString& path, std::function<void()> question) {
        silent.contains(path) ? waiting.append(std::move(question)) : question();
    }
    QList<std::function<void()>> waiting;
};

class MemorySounds : public Sounds {
 public:
    void play(const QString& name) override { played.append(name); }
    QStringList played;
};

class MemoryWorkspace : public Workspace {
 public:
    void start() override { started = true; }
    void activateOrOpenTerminal(const QString& displayName) override { activated.append(displayName); }
    void open(const QUrl& url) override { opened.append(url); }
    void reveal(const QUrl& file) override { revealed.append(file); }
    void openAccessibilitySettings() override {}

    bool started = false;
    QStringList activated;
    QList<QUrl> opened, revealed;
};

/// Keeps the jobs until the test lets them run.
class HeldQueue : public SerialQueue {
 public:
    void run(std::function<void()> job) override { jobs.append(std::move(job)); }
    void runAll() {
        while (!jobs.isEmpty()) jobs.takeFirst()();
    }
    QList<std::function<void()>> jobs;
};

/// Runs jobs at once.
class InlineQueue : public SerialQueue {
 public:
    void run(std::function<void()> job) override { job(); }
};

/// Answers every request with `answer`, having written `written` into the result. Names in `taken` are not given.
class MemoryWorker : public Worker {
 public:
    std::unique_ptr<ResultFile> resultIn(const QByteArray& folder) override {
        errno = EROFS;
        if (readOnly.contains(folder)) return nullptr;
        return std::make_unique<File>(*this, folder);
    }
    std::optional<QJsonObject> run(const QStringList& request, int, const ResultFile* result) override {
        requests.append(request);
        const auto size = size_t(written.size());
        if (result && ::write(result->descriptor(), written.constData(), size) != written.size()) return {};
        return answer;
    }

    QList<QStringList> requests;
    std::optional<QJsonObject> answer = QJsonObject();
    QByteArray written = QByteArray("\xff\xd8\xff...\xff\xd9");  // like a JPEG
    QByteArrayList readOnly, taken;

 private:
    struct File : ResultFile {
        File(MemoryWorker& w, QByteArray f) : worker(w), path(std::move(f)) {}
        int descriptor() const override { return bytes.get(); }
        bool finish() override { return true; }
        Naming name(const QByteArray& fileName) override {
            if (worker.taken.contains(path + '/' + fileName)) return Naming::taken;
            worker.taken.append(path + '/' + fileName);
            return Naming::done;
        }
        QByteArray folder() const override { return path; }
        qsizetype maxNameLength() const override { return 255; }

        MemoryWorker& worker;
        QByteArray path;
        Descriptor bytes{::memfd_create("result", MFD_CLOEXEC)};
    };
};

class MemoryPasteboard : public Pasteboard {
 public:
    void setString(const QString& text) override { texts.append(text); }
    QStringList texts;
};

/// `begin` is a new drag by another program; the test answers what it carries.
class MemoryDragPasteboard : public DragPasteboard {
 public:
    int changeCount() const override { return count; }
    void canReadUsable(std::function<void(bool)> done) override {
        ++questions;
        answer = std::move(done);
    }
    int count = 0, questions = 0;
    std::function<void(bool)> answer;
};

/// A drop whose forms answer at once, but for those without data, which are refused. `saved` is what the source writes
/// when it keeps its promise.
class MemoryDrop : public Drop {
 public:
    QStringList types() const override { return offered; }
    void load(const QString& type, std::function<void(std::optional<QByteArray>)> done) override {
        const auto found = forms.find(type);
        done(found == forms.end() ? std::nullopt : std::optional(*found));
    }
    std::optional<QByteArray> promisedName() const override { return promise; }
    void savePromise(const QUrl& target, std::function<void(bool)> done) override {
        QFile file(target.toLocalFile());
        if (saved && file.open(QFile::WriteOnly)) file.write(*saved);
        file.close();
        done(true);
    }
    void declinePromise() override {}
    void offer(const char* type, const QByteArray& data) {
        offered.append(QString::fromLatin1(type));
        forms.insert(QString::fromLatin1(type), data);
    }

    QStringList offered;
    QHash<QString, QByteArray> forms;
    std::optional<QByteArray> promise, saved;
};

/// Files have no icons until the test gives one.
class MemoryIcons : public FileIcons {
 public:
    void find(const QUrl& file, int, std::function<void(const QImage&)> done) override {
        asked.append(file);
        waiting.append(std::move(done));
    }
    QList<QUrl> asked;
    QList<std::function<void(const QImage&)>> waiting;
};

class MemorySharing : public Sharing {
 public:
    void offers(const QUrl&, std::function<void(const QList<ShareOffer>&)> found) override { found(list); }
    QList<ShareOffer> list;
};
