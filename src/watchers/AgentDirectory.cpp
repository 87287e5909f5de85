#include "watchers/AgentDirectory.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QStringDecoder>
#include <algorithm>
#include <cerrno>
#include <memory>

namespace {

constexpr qsizetype kMostOfOne = 8 * 1024;     // bytes; a record's first five lines are a few hundred
constexpr qsizetype kMostOfAll = 1024 * 1024;  // bytes
constexpr int kMostEntries = 4096;

struct DirectoryCloser {
    void operator()(DIR* directory) const { ::closedir(directory); }
};

bool isUsers(const struct stat& status) {
    return status.st_uid == ::geteuid();
}

bool isUsersFile(const struct stat& status) {
    return S_ISREG(status.st_mode) && isUsers(status);
}

/// -1 when it cannot be opened or is not the user's.
int openUsers(const QString& path) {
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    struct stat status = {};
    if (descriptor < 0 || (::fstat(descriptor, &status) == 0 && isUsers(status))) return descriptor;
    ::close(descriptor);
    return -1;
}

QStringList list(int descriptor) {
    QStringList names;
    // The listing takes over the descriptor that it is given.
    const int own = ::fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    const std::unique_ptr<DIR, DirectoryCloser> directory(own < 0 ? nullptr : ::fdopendir(own));
    if (!directory) {
        if (own >= 0) ::close(own);
        return names;
    }
    for (int i = 0; i < kMostEntries; ++i) {
        const dirent* entry = ::readdir(directory.get());
        if (!entry) break;
        struct stat status = {};
        if (::fstatat(descriptor, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 && isUsersFile(status))
            names.append(QFile::decodeName(entry->d_name));
    }
    std::sort(names.begin(), names.end());
    return names;
}

QByteArray readSome(int descriptor, qsizetype most) {
    QByteArray bytes(most, Qt::Uninitialized);
    qsizetype got = 0;
    while (got < most) {
        const ssize_t n = ::read(descriptor, bytes.data() + got, size_t(most - got));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        got += n;
    }
    bytes.truncate(got);
    return bytes;
}

}  // namespace

AgentDirectory::AgentDirectory(const QString& path) : descriptor_(openUsers(path)), left_(kMostOfAll) {
    if (descriptor_ >= 0) entries_ = list(descriptor_);
}

AgentDirectory::~AgentDirectory() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

QString AgentDirectory::text(const QString& name) {
    if (left_ == 0 || !std::binary_search(entries_.begin(), entries_.end(), name)) return {};
    const int file = ::openat(descriptor_, QFile::encodeName(name).constData(),
                              O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (file < 0) return {};
    const qsizetype most = std::min(kMostOfOne, left_);
    struct stat status = {};
    const QByteArray bytes = ::fstat(file, &status) == 0 && isUsersFile(status) ? readSome(file, most) : QByteArray();
    ::close(file);
    left_ -= bytes.size();
    // A character that the limit has cut in two is no error.
    const bool whole = bytes.size() < most;
    QStringDecoder decoder(QStringDecoder::Utf8,
                           whole ? QStringDecoder::Flag::Stateless : QStringDecoder::Flag::Default);
    const QString text = decoder(bytes);
    return decoder.hasError() ? QString() : text;
}
