#include "watchers/AgentDirectory.h"

#include <QFile>
#include <QStringDecoder>
#include <algorithm>

#include "platform/Directory.h"

namespace {

constexpr qsizetype kMaxOfOne = 8 * 1024;     // bytes; a record's first five lines are a few hundred
constexpr qsizetype kMaxOfAll = 1024 * 1024;  // bytes
constexpr int kMaxEntries = 4096;

bool isUsersFile(const std::optional<FileStatus>& status) {
    return status && S_ISREG(status->mode) && status->owner == ::geteuid();
}

}  // namespace

AgentDirectory::AgentDirectory(const QString& path)
    : directory_(
          ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC)),
      left_(kMaxOfAll) {
    const auto status = directory_ ? statusOf(directory_.get(), ".") : std::nullopt;
    if (!status || status->owner != ::geteuid()) return;
    const auto take = [this](const char* name, quint64) {
        if (isUsersFile(statusOf(directory_.get(), name))) entries_.append(QFile::decodeName(name));
        return true;
    };
    visitEntries(directory_.get(), take, kMaxEntries);
    std::sort(entries_.begin(), entries_.end());
}

QString AgentDirectory::text(const QString& name) {
    if (left_ == 0 || !std::binary_search(entries_.begin(), entries_.end(), name)) return {};
    const Descriptor file(::openat(directory_.get(), QFile::encodeName(name).constData(),
                                   O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    // The file may have been replaced since it was listed.
    struct stat status = {};
    if (!file || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_uid != ::geteuid())
        return {};
    const qsizetype max = std::min(kMaxOfOne, left_);
    const QByteArray bytes = readUpTo(file.get(), max).value_or(QByteArray());
    left_ -= bytes.size();
    // A character cut in two by the limit is not an error.
    const bool whole = bytes.size() < max;
    QStringDecoder decoder(QStringDecoder::Utf8,
                           whole ? QStringDecoder::Flag::Stateless : QStringDecoder::Flag::Default);
    const QString text = decoder(bytes);
    return decoder.hasError() ? QString() : text;
}
