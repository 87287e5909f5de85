#include "platform/linux/DiskLanes.h"

#include <QFile>
#include <algorithm>

namespace {

constexpr int kMaxPerMount = 3;

/// The kernel escapes white space and backslashes in octal.
QByteArray unescaped(const QByteArray& field) {
    QByteArray text;
    for (qsizetype i = 0; i < field.size(); ++i) {
        bool octal = false;
        const int code = field[i] == '\\' ? field.mid(i + 1, 3).toInt(&octal, 8) : 0;
        text += octal ? char(code) : field[i];
        if (octal) i += 3;
    }
    return text;
}

/// The mount point of the file system that contains `path`, by name only, without disk access.
QByteArray mountOf(const QByteArray& path) {
    QFile table(QStringLiteral("/proc/self/mountinfo"));
    QByteArray longest;
    if (!table.open(QIODevice::ReadOnly)) return longest;
    for (const QByteArray& line : table.readAll().split('\n')) {
        const QByteArray mount = unescaped(line.split(' ').value(4));
        const bool above = path.startsWith(mount) && (mount.endsWith('/') || path.mid(mount.size(), 1) == "/");
        if (above && mount.size() > longest.size()) longest = mount;
    }
    return longest;
}

}  // namespace

void DiskLanes::enqueue(const QByteArray& path, std::function<void(Place)> start) {
    waiting_.push_back({path.left(path.lastIndexOf('/')), mountOf(path), std::move(start)});
    startWaiting();
}

bool DiskLanes::mayStart(const Request& request) const {
    const auto sameFolder = [&](const Request& other) { return other.folder == request.folder; };
    const auto sameMount = [&](const Request& other) { return other.mount == request.mount; };
    return running_.size() < kMaxThreads && std::none_of(running_.begin(), running_.end(), sameFolder) &&
           std::count_if(running_.begin(), running_.end(), sameMount) < kMaxPerMount;
}

void DiskLanes::startWaiting() {
    for (auto next = waiting_.begin(); next != waiting_.end();) {
        const auto request = next++;
        if (!mayStart(*request)) continue;
        running_.splice(running_.end(), waiting_, request);
        request->start(request);
    }
}
