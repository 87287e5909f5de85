#include "platform/linux/PathReferences.h"

#include <climits>
#include <utility>

#include "platform/Directory.h"
#include "platform/FileUrls.h"

namespace {

constexpr double kTimeout = 1;  // seconds

using Identity = FileStatus::Identity;

struct Reference {
    std::optional<Identity> identity;
    QByteArray path;
};

QByteArray encode(const Reference& reference) {
    if (!reference.identity) return reference.path;
    QByteArray text;
    for (const quint64 number : {reference.identity->device, reference.identity->inode, reference.identity->created})
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

bool exists(const QByteArray& path) {
    struct stat status = {};
    return ::stat(path.constData(), &status) == 0;
}

/// Removes trailing slashes, as of a directory's path.
QByteArray withoutEnd(QByteArray path) {
    while (path.size() > 1 && path.endsWith('/')) path.chop(1);
    return path;
}

/// The path of the entry of `folder`, which ends in a slash, that has this identity; empty if there is none.
QByteArray findIn(const QByteArray& folder, const Identity& identity) {
    const Descriptor directory(::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    QByteArray path;
    const auto visit = [&](const char* name, quint64 inode) {
        if (inode != identity.inode) return true;
        const auto status = statusOf(directory.get(), name);
        if (!status || status->identity != identity) return true;
        path = folder + name;
        return false;
    };
    if (directory) visitEntries(directory.get(), visit);
    return exists(path) ? path : QByteArray();
}

/// The file's current path; empty if it cannot be found.
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
    const auto identify = [path = *path]() -> std::optional<QByteArray> {
        const auto status = statusOf(AT_FDCWD, withoutEnd(path).constData());
        return status ? std::optional(encode({status->identity, path})) : std::nullopt;
    };
    lanes_.ask(withoutEnd(*path), identify, std::move(done));
}

void PathReferences::resolve(const QByteArray& bookmark, std::function<void(const std::optional<QUrl>&)> done) {
    const auto reference = decode(bookmark);
    if (!reference) return done({});
    // The disk's answer or the timeout, whichever comes first.
    struct Once {
        std::function<void(const std::optional<QUrl>&)> done;
        TimerHandle timeout;
        void answer(const std::optional<QUrl>& file) {
            timeout.cancel();
            if (const auto call = std::exchange(done, nullptr)) call(file);
        }
    };
    const auto once = std::make_shared<Once>(Once{lifetime_.guard(std::move(done)), {}});
    once->timeout = loop_.after(kTimeout, [weak = std::weak_ptr(once), path = reference->path] {
        if (const auto waiting = weak.lock()) waiting->answer(fileUrl(path));
    });
    lanes_.ask(
        withoutEnd(reference->path), [reference = *reference] { return find(reference); },
        [once](const QByteArray& path) { once->answer(path.isEmpty() ? std::nullopt : std::optional(fileUrl(path))); });
}
