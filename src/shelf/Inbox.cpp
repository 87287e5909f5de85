#include "shelf/Inbox.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/inotify.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>

#include "platform/Directory.h"
#include "platform/FileUrls.h"
#include "shelf/NewFile.h"

namespace {

using std::chrono::duration;
using std::chrono::steady_clock;

const QByteArray kPrefix = ".glimmet-inbox-";
constexpr double kQuiet = 0.5;     // seconds without a change, after which the writer counts as done
constexpr double kPrompt = 1;      // seconds within which most writers start
constexpr double kMaxWait = 3600;  // seconds, even if the file never stops growing
constexpr int kMaxWatches = 2000;  // watched folders in all

struct Entry {
    QByteArray name;
    mode_t mode = 0;
    off_t size = 0;
};

Descriptor openFolderIn(int folder, const QByteArray& name) {
    return Descriptor(::openat(folder, name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
}

/// The entries of an open folder, sorted by name.
QList<Entry> entries(int folder) {
    QList<Entry> all;
    visitEntries(folder, [&](const char* name, quint64) {
        struct stat info {};
        if (::fstatat(folder, name, &info, AT_SYMLINK_NOFOLLOW) == 0) all.append({name, info.st_mode, info.st_size});
        return true;
    });
    std::sort(all.begin(), all.end(), [](const Entry& a, const Entry& b) { return a.name < b.name; });
    return all;
}

/// Locks the inbox for as long as it is open; false if another process has it. Without support for locks it counts as
/// free.
bool claim(int inbox) {
    return ::flock(inbox, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

bool isEmptyFile(const Entry& entry) {
    return S_ISREG(entry.mode) && entry.size == 0;
}

/// Links are not taken: one named like a picture could lead to a private key.
bool isThing(const Entry& entry) {
    return S_ISREG(entry.mode) || S_ISDIR(entry.mode);
}

/// Moves the things out of the open folder `inbox`, `first` first, and removes the folder if that leaves it empty.
QList<QUrl> moveOutOf(int inbox, const QByteArray& inboxName, int parent, const QUrl& folder, const QString& first) {
    QList<QUrl> out;
    auto all = entries(inbox);
    std::stable_partition(all.begin(), all.end(), [&](const Entry& one) { return one.name == first.toUtf8(); });
    for (const Entry& one : all) {
        if (!isThing(one)) continue;
        if (const auto name = moveUnderFreeName(inbox, one.name, parent, sanitizedFileName(one.name)))
            out.append(fileUrl(pathOf(folder) + *name));
    }
    ::unlinkat(parent, inboxName.constData(), AT_REMOVEDIR);
    return out;
}

}  // namespace

std::shared_ptr<Inbox> Inbox::make(const QUrl& folder) {
    Descriptor parent = openFolder(folder);
    QByteArray name = newHiddenName(kPrefix);
    if (!parent || ::mkdirat(parent.get(), name.constData(), S_IRWXU) != 0) return nullptr;
    Descriptor self = openFolderIn(parent.get(), name);
    if (!self || !claim(self.get())) return nullptr;
    return std::shared_ptr<Inbox>(new Inbox(folder, std::move(name), std::move(parent), std::move(self)));
}

Inbox::Inbox(QUrl folder, QByteArray name, Descriptor parent, Descriptor self)
    : folder_(std::move(folder)),
      name_(std::move(name)),
      parent_(std::move(parent)),
      self_(std::move(self)),
      events_(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)),
      wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    int budget = kMaxWatches;
    watch(self_.get(), budget);
}

QUrl Inbox::place(const QString& name) const {
    return fileUrl(pathOf(folder_) + name_ + '/' + name.toUtf8());
}

void Inbox::setReply(Reply reply) {
    reply_ = reply;
    const uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(wake_.get(), &one, sizeof one);
}

// Adding a watch twice has no effect, so this walks the whole tree whenever a folder is new.
void Inbox::watch(int folder, int& budget) {
    if (--budget < 0) return;
    const QByteArray path = "/proc/self/fd/" + QByteArray::number(folder);
    ::inotify_add_watch(events_.get(), path.constData(),
                        IN_CREATE | IN_MODIFY | IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE | IN_ONLYDIR);
    for (const Entry& one : entries(folder)) {
        if (!S_ISDIR(one.mode)) continue;
        if (const Descriptor inner = openFolderIn(folder, one.name)) watch(inner.get(), budget);
    }
}

bool Inbox::sleep(double seconds) {
    std::array<pollfd, 2> sources{{{events_.get(), POLLIN, 0}, {wake_.get(), POLLIN, 0}}};
    ::poll(sources.data(), sources.size(), int(std::ceil(std::max(seconds, 0.0) * 1000)));
    uint64_t count = 0;
    const bool told = ::read(wake_.get(), &count, sizeof count) > 0;
    return readEvents() || told;
}

/// Returns whether something has changed.
bool Inbox::readEvents() {
    alignas(inotify_event) std::array<char, 16384> buffer{};
    bool changed = false, newFolder = false;
    for (ssize_t length = 0; (length = ::read(events_.get(), buffer.data(), buffer.size())) > 0;) {
        changed = true;
        for (const char* place = buffer.data(); place < buffer.data() + length;) {
            const auto* event = reinterpret_cast<const inotify_event*>(place);
            place += sizeof(inotify_event) + event->len;
            const QByteArray file = QByteArray::number(event->wd) + '/' + (event->len ? event->name : "");
            if (event->mask & IN_MODIFY)
                beingWritten_.insert(file);
            else
                beingWritten_.remove(file);
            if (event->mask & IN_Q_OVERFLOW) beingWritten_.clear();
            newFolder |= (event->mask & (IN_ISDIR | IN_Q_OVERFLOW)) != 0;
        }
    }
    int budget = kMaxWatches;
    if (newFolder) watch(self_.get(), budget);
    return changed;
}

Inbox::Contents Inbox::contents() const {
    const auto all = entries(self_.get());
    if (std::none_of(all.begin(), all.end(), isThing)) return Contents::nothing;
    return std::any_of(all.begin(), all.end(), isEmptyFile) ? Contents::emptyFiles : Contents::things;
}

Inbox::Contents Inbox::await(double timeout, bool prompt) {
    const auto since = [](Time time) { return duration<double>(steady_clock::now() - time).count(); };
    const Time start = steady_clock::now();
    for (Time changed = start;;) {
        const Reply reply = reply_;
        if (reply == Reply::refused) return Contents::nothing;
        const bool written = reply == Reply::written;
        const double limit = prompt && written && beingWritten_.isEmpty() ? std::min(kPrompt, timeout) : timeout;
        const bool whole = written && beingWritten_.isEmpty() && contents() == Contents::things;
        const double left = (whole ? std::min(kQuiet, limit) : limit) - since(changed);
        if (left <= 0 || since(start) > kMaxWait) return contents();
        if (sleep(left)) changed = steady_clock::now();
    }
}

QList<QUrl> Inbox::moveOut(const QString& first) {
    return moveOutOf(self_.get(), name_, parent_.get(), folder_, first);
}

bool Inbox::discard() {
    const auto all = entries(self_.get());
    if (!std::all_of(all.begin(), all.end(), isEmptyFile)) return false;
    for (const Entry& one : all) ::unlinkat(self_.get(), one.name.constData(), 0);
    ::unlinkat(parent_.get(), name_.constData(), AT_REMOVEDIR);
    return true;
}

QList<QUrl> Inbox::moveOutLeftovers(const QUrl& folder) {
    QList<QUrl> out;
    const Descriptor parent(::open(pathOf(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!parent) return out;
    for (const Entry& one : entries(parent.get())) {
        if (!one.name.startsWith(kPrefix) || !S_ISDIR(one.mode)) continue;
        const Descriptor inbox = openFolderIn(parent.get(), one.name);
        if (inbox && claim(inbox.get())) out += moveOutOf(inbox.get(), one.name, parent.get(), folder, QString());
    }
    return out;
}
