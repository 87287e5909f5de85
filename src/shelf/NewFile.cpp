#include "shelf/NewFile.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>

#include <QDir>
#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "platform/FileUrls.h"

namespace {

constexpr mode_t kMode = 0644;
constexpr qsizetype kMaxExtension = 16;
constexpr qsizetype kMaxBytes = 230;  // leaves room for a counter in the 255 bytes of a name

enum class Naming { done, taken, failed };

/// Where the extension of a name begins: ".tar.gz" counts as one, but "20.07.33.png" has only ".png".
qsizetype extensionStart(const QString& name) {
    qsizetype dot = name.lastIndexOf(u'.');
    if (dot > 0 && name.left(dot).endsWith(QLatin1String(".tar"), Qt::CaseInsensitive)) dot -= 4;
    return dot > 0 ? dot : name.size();
}

/// "a.tar.gz" with counter 2 is "a-2.tar.gz".
QString counted(const QString& name, int counter) {
    if (counter == 1) return name;
    const qsizetype end = extensionStart(name);
    return QStringLiteral("%1-%2").arg(name.left(end)).arg(counter) + name.mid(end);
}

/// Tries `name`, then `name` with counters from 2. Terminates, since a folder is finite.
template <class Attempt>
std::optional<QByteArray> underFreeName(const QString& name, const Attempt& attempt) {
    for (int counter = 1;; ++counter) {
        QByteArray target = counted(name, counter).toUtf8();
        const Naming naming = attempt(target.constData());
        if (naming == Naming::done) return target;
        if (naming == Naming::failed) return {};
    }
}

Naming refusal() {
    return errno == EEXIST ? Naming::taken : Naming::failed;
}

/// For a file system without RENAME_NOREPLACE: reserves the name with an empty file or folder, then replaces that.
Naming moveOverOurs(int from, const char* name, int to, const char* target) {
    struct stat info {};
    if (::fstatat(from, name, &info, AT_SYMLINK_NOFOLLOW) != 0) return Naming::failed;
    const bool folder = S_ISDIR(info.st_mode);
    if (folder) {
        if (::mkdirat(to, target, S_IRWXU) != 0) return refusal();
    } else if (!Descriptor(::openat(to, target, O_RDONLY | O_CREAT | O_EXCL | O_CLOEXEC, kMode))) {
        return refusal();
    }
    if (::renameat(from, name, to, target) == 0) return Naming::done;
    ::unlinkat(to, target, folder ? AT_REMOVEDIR : 0);
    return Naming::failed;
}

Naming move(int from, const char* name, int to, const char* target) {
    if (::renameat2(from, name, to, target, RENAME_NOREPLACE) == 0) return Naming::done;
    if (errno != EINVAL && errno != ENOSYS) return refusal();
    return moveOverOurs(from, name, to, target);
}

bool writeAndFlush(int file, const QByteArray& contents) {
    return writeAll(file, contents) && ::fsync(file) == 0;
}

/// For a file system without O_TMPFILE.
std::optional<QByteArray> writeHidden(int folder, const QString& name, const QByteArray& contents) {
    const QByteArray draft = newHiddenName(".glimmet-draft-");
    const Descriptor file(
        ::openat(folder, draft.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kMode));
    if (!file) return {};
    std::optional<QByteArray> made;
    if (writeAndFlush(file.get(), contents)) made = moveUnderFreeName(folder, draft, folder, name);
    if (!made) ::unlinkat(folder, draft.constData(), 0);
    return made;
}

/// Control characters, and those that override the text direction, which can make "gpj.exe" look like "exe.jpg".
bool isMisleading(QChar c) {
    const bool isBidiControl = (c >= u'\u202a' && c <= u'\u202e') || (c >= u'\u2066' && c <= u'\u2069');
    return isBidiControl || c.category() == QChar::Other_Control;
}

/// The longest prefix of `text` that fits into `max` bytes of UTF-8 and cuts no character.
QString prefixOf(const QString& text, qsizetype max) {
    QByteArray bytes = text.toUtf8();
    if (bytes.size() <= max) return text;
    while (max > 0 && (uchar(bytes[max]) & 0xc0) == 0x80) --max;
    return QString::fromUtf8(bytes.left(max));
}

}  // namespace

Descriptor openFolder(const QUrl& folder) {
    QDir().mkpath(folder.toLocalFile());
    return Descriptor(::open(pathOf(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

QByteArray newHiddenName(const QByteArray& prefix) {
    quint64 number = 0;
    // Cannot fail for so few bytes once the machine is up.
    if (::getrandom(&number, sizeof number, 0) != sizeof number) number = quint64(::getpid());
    return prefix + QByteArray::number(number, 36);
}

std::optional<QUrl> writeNewFile(const QUrl& folder, const QString& name, const QByteArray& contents) {
    const Descriptor dir = openFolder(folder);
    if (!dir) return {};
    const Descriptor file(::openat(dir.get(), ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, kMode));
    std::optional<QByteArray> made;
    if (file) {
        if (!writeAndFlush(file.get(), contents)) return {};
        const QByteArray self = "/proc/self/fd/" + QByteArray::number(file.get());
        made = underFreeName(name, [&](const char* target) {
            return ::linkat(AT_FDCWD, self.constData(), dir.get(), target, AT_SYMLINK_FOLLOW) == 0 ? Naming::done
                                                                                                   : refusal();
        });
    } else if (errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL) {
        made = writeHidden(dir.get(), name, contents);
    }
    if (!made) return {};
    ::fsync(dir.get());
    return fileUrl(pathOf(folder) + *made);
}

std::optional<QByteArray> moveUnderFreeName(int from, const QByteArray& name, int to, const QString& wanted) {
    return underFreeName(wanted, [&](const char* target) { return move(from, name.constData(), to, target); });
}

QString sanitizedFileName(const QByteArray& name) {
    QString clean = QString::fromUtf8(name.mid(name.lastIndexOf('/') + 1));
    clean.removeIf(isMisleading);
    const auto harmless = [](QChar c) { return c != u'.' && !c.isSpace(); };
    clean.remove(0, std::find_if(clean.begin(), clean.end(), harmless) - clean.begin());
    clean = clean.trimmed();
    const QString extension = clean.mid(extensionStart(clean));
    if (clean.toUtf8().size() > kMaxBytes) {
        const bool fits = extension.size() <= kMaxExtension;
        clean = fits ? prefixOf(clean, kMaxBytes - extension.toUtf8().size()) + extension : prefixOf(clean, kMaxBytes);
    }
    return clean.isEmpty() ? QStringLiteral("Dropped") : clean;
}
