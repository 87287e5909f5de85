#include "platform/linux/PathReferences.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <future>
#include <memory>

#include "platform/FileUrls.h"

namespace {

constexpr std::chrono::milliseconds kPatience(200);
constexpr std::chrono::milliseconds kPatienceAfterwards(1);
constexpr std::chrono::seconds kPauseBetweenSeries(1);

/// What stays the same when a file is renamed. The time of birth tells a file from a later one that was given the inode
/// of a deleted one; it is 0 where the file system keeps none.
struct Identity {
    quint64 device = 0, inode = 0, birth = 0;
    bool operator==(const Identity&) const = default;
};

struct Reference {
    std::optional<Identity> identity;
    QByteArray path;
};

QByteArray encode(const Reference& reference) {
    if (!reference.identity) return reference.path;
    QByteArray text;
    for (const quint64 number : {reference.identity->device, reference.identity->inode, reference.identity->birth})
        text += QByteArray::number(number) + ':';
    return text + reference.path;
}

std::optional<Reference> decode(const QByteArray& bookmark) {
    const qsizetype slash = bookmark.indexOf('/');
    if (slash < 0 || bookmark.contains('\0')) return {};
    if (slash == 0) return Reference{{}, bookmark};
    const auto numbers = bookmark.first(slash).split(':');
    if (numbers.size() != 4 || !numbers[3].isEmpty()) return {};
    quint64 values[3];
    for (int i = 0; i < 3; ++i) {
        bool valid = false;
        values[i] = numbers[i].toULongLong(&valid);
        if (!valid) return {};
    }
    return Reference{Identity{values[0], values[1], values[2]}, bookmark.sliced(slash)};
}

/// Of the directory entry itself, which may be a symbolic link.
std::optional<Identity> identityOf(int folder, const char* path) {
    struct statx status = {};
    if (::statx(folder, path, AT_SYMLINK_NOFOLLOW, STATX_INO | STATX_BTIME, &status) != 0) return {};
    Identity identity{makedev(status.stx_dev_major, status.stx_dev_minor), status.stx_ino, 0};
    if (status.stx_mask & STATX_BTIME)
        identity.birth = quint64(status.stx_btime.tv_sec) * 1'000'000'000 + status.stx_btime.tv_nsec;
    return identity;
}

bool exists(const QByteArray& path) {
    struct stat status = {};
    return ::stat(path.constData(), &status) == 0;
}

/// Without the slashes that the path of a directory may end in.
QByteArray withoutEnd(QByteArray path) {
    while (path.size() > 1 && path.endsWith('/')) path.chop(1);
    return path;
}

/// The path of the entry of `folder`, which ends in a slash, that has this identity; empty if there is none.
QByteArray findIn(const QByteArray& folder, const Identity& identity) {
    const std::unique_ptr<DIR, int (*)(DIR*)> directory(::opendir(folder.constData()), &::closedir);
    if (!directory) return {};
    while (const dirent* entry = ::readdir(directory.get())) {
        if (entry->d_ino != identity.inode || identityOf(::dirfd(directory.get()), entry->d_name) != identity) continue;
        const QByteArray path = folder + entry->d_name;
        return exists(path) ? path : QByteArray();
    }
    return {};
}

/// Where the file is; empty if it is nowhere to be found.
QByteArray find(const Reference& reference) {
    if (exists(reference.path)) return reference.path;
    if (!reference.identity) return {};
    const QByteArray path = withoutEnd(reference.path);
    return findIn(path.first(path.lastIndexOf('/') + 1), *reference.identity);
}

}  // namespace

template <class Answer>
std::optional<Answer> PathReferences::ask(std::function<Answer()> question) const {
    const auto promise = std::make_shared<std::promise<Answer>>();
    auto answer = promise->get_future();
    queue_.run([promise, question = std::move(question)] { promise->set_value(question()); });

    const auto now = Clock::now();
    if (now - lastAnswer_ > kPauseBetweenSeries) patienceEnds_ = now + kPatience;
    const auto status = answer.wait_until(std::max(patienceEnds_, now + kPatienceAfterwards));
    lastAnswer_ = Clock::now();
    if (status != std::future_status::ready) return {};
    return answer.get();
}

std::optional<QByteArray> PathReferences::bookmark(const QUrl& file) const {
    const QByteArray path = pathOf(file);
    if (!path.startsWith('/') || path.contains('\0')) return {};
    const auto identity =
        ask<std::optional<Identity>>([path] { return identityOf(AT_FDCWD, withoutEnd(path).constData()); });
    return encode({identity.value_or(std::nullopt), path});
}

std::optional<QUrl> PathReferences::resolve(const QByteArray& bookmark) const {
    const auto reference = decode(bookmark);
    if (!reference) return {};
    const auto path = ask<QByteArray>([reference = *reference] { return find(reference); });
    if (path && path->isEmpty()) return {};
    return fileUrl(path.value_or(reference->path));
}
