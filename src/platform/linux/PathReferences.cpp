#include "platform/linux/PathReferences.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <climits>
#include <memory>
#include <utility>

#include "platform/FileUrls.h"

namespace {

constexpr double kPatience = 1;  // seconds

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

std::optional<QByteArray> PathReferences::plain(const QUrl& file) const {
    const QByteArray path = pathOf(file);
    if (!path.startsWith('/') || path.contains('\0') || path.size() >= PATH_MAX) return {};
    return path;
}

void PathReferences::bookmark(const QUrl& file, std::function<void(const std::optional<QByteArray>&)> done) {
    const auto path = plain(file);
    if (!path) return done({});
    lanes_.ask(withoutEnd(*path), [path = *path, done = std::move(done)]() -> DiskLanes::Answer {
        const auto identity = identityOf(AT_FDCWD, withoutEnd(path).constData());
        return [=] { done(identity ? std::optional(encode({identity, path})) : std::nullopt); };
    });
}

void PathReferences::resolve(const QByteArray& bookmark, std::function<void(const std::optional<QUrl>&)> done) {
    const auto reference = decode(bookmark);
    if (!reference) return done({});
    // Of the disk's answer and the end of our patience the first one counts.
    struct Once {
        std::function<void(const std::optional<QUrl>&)> done;
        TimerHandle patience;
        void answer(const std::optional<QUrl>& file) {
            patience.cancel();
            if (const auto call = std::exchange(done, nullptr)) call(file);
        }
    };
    const auto once = std::make_shared<Once>(Once{std::move(done), {}});
    once->patience = loop_.after(kPatience, [weak = std::weak_ptr(once), path = reference->path] {
        if (const auto waiting = weak.lock()) waiting->answer(fileUrl(path));
    });
    lanes_.ask(withoutEnd(reference->path), [reference = *reference, once]() -> DiskLanes::Answer {
        const QByteArray path = find(reference);
        return [=] { once->answer(path.isEmpty() ? std::nullopt : std::optional(fileUrl(path))); };
    });
}
