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

constexpr qsizetype kMostBytes = 64 * 1024;
constexpr int kMostEntries = 4096;

struct DirectoryCloser {
    void operator()(DIR* directory) const { ::closedir(directory); }
};

QStringList list(int descriptor) {
    QStringList names;
    // The listing takes over the descriptor that it is given.
    const int own = ::fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    const std::unique_ptr<DIR, DirectoryCloser> directory(own < 0 ? nullptr : ::fdopendir(own));
    if (!directory) {
        if (own >= 0) ::close(own);
        return names;
    }
    while (names.size() < kMostEntries) {
        const dirent* entry = ::readdir(directory.get());
        if (!entry) break;
        const QString name = QFile::decodeName(entry->d_name);
        if (name != QLatin1String(".") && name != QLatin1String("..")) names.append(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

QByteArray readSome(int descriptor) {
    QByteArray bytes(kMostBytes, '\0');
    qsizetype got = 0;
    while (got < kMostBytes) {
        const ssize_t n = ::read(descriptor, bytes.data() + got, size_t(kMostBytes - got));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        got += n;
    }
    bytes.truncate(got);
    return bytes;
}

/// Removes the beginning of a character that the limit has cut in two.
void dropCutCharacter(QByteArray& bytes) {
    qsizetype start = bytes.size() - 1;
    while (start > bytes.size() - 4 && start > 0 && (static_cast<unsigned char>(bytes[start]) & 0xC0) == 0x80) --start;
    const auto lead = static_cast<unsigned char>(bytes[start]);
    const qsizetype length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
    if (start + length > bytes.size()) bytes.truncate(start);
}

}  // namespace

AgentDirectory::AgentDirectory(const QString& path)
    : descriptor_(::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC)) {
    if (descriptor_ >= 0) entries_ = list(descriptor_);
}

AgentDirectory::~AgentDirectory() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

QString AgentDirectory::text(const QString& name) const {
    if (descriptor_ < 0) return {};
    const int file = ::openat(descriptor_, QFile::encodeName(name).constData(),
                              O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (file < 0) return {};
    struct stat status = {};
    const bool regular = ::fstat(file, &status) == 0 && S_ISREG(status.st_mode);
    QByteArray bytes = regular ? readSome(file) : QByteArray();
    ::close(file);
    if (bytes.size() == kMostBytes) dropCutCharacter(bytes);
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(bytes);
    return decoder.hasError() ? QString() : text;
}
