#include "shelf/NewFile.h"

#include <unistd.h>

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTemporaryFile>

namespace {

const QString kHiddenName = QStringLiteral(".glimmet-XXXXXX");  // of what is not whole yet
constexpr int kMostAttempts = 1000;
constexpr qsizetype kLongestExtension = 16;
constexpr qsizetype kMostBytes = 230;  // of the 255 that a name may have, so that a counter fits

/// Where the part of a name begins that tells what kind of file it is: ".tar.gz", but of the time "20.07.33.png" only
/// ".png".
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

/// Renames to the first free name of its kind; QFile::rename() never replaces a file.
std::optional<QUrl> moveUnder(QFile& file, const QDir& folder, const QString& name) {
    for (int counter = 1; counter <= kMostAttempts; ++counter) {
        const QString target = folder.filePath(counted(name, counter));
        if (file.rename(target)) return QUrl::fromLocalFile(target);
        if (!QFileInfo::exists(target) && !QFileInfo(target).isSymLink()) return {};
    }
    return {};
}

/// Control characters, and those that turn the direction of writing around: they make "exe.jpg" out of "gpj.exe".
bool misleading(QChar c) {
    const bool turns = (c >= u'\u202a' && c <= u'\u202e') || (c >= u'\u2066' && c <= u'\u2069');
    return turns || c.category() == QChar::Other_Control;
}

/// What a program left half-done that ended in the middle. A day later nobody works on it any more.
void removeAbandoned(const QDir& folder) {
    const QDateTime yesterday = QDateTime::currentDateTimeUtc().addDays(-1);
    const QStringList pattern{QString(kHiddenName).replace(u'X', u'?')};
    for (const QFileInfo& left : folder.entryInfoList(pattern, QDir::AllEntries | QDir::Hidden | QDir::System)) {
        if (left.lastModified() > yesterday) continue;
        if (left.isDir() && !left.isSymLink())
            QDir(left.filePath()).removeRecursively();
        else
            QFile::remove(left.filePath());
    }
}

bool cutToBytes(QString& text, qsizetype most) {
    if (text.toUtf8().size() <= most) return false;
    while (text.toUtf8().size() > most) text.chop(text.size() > 1 && text.back().isLowSurrogate() ? 2 : 1);
    return true;
}

}  // namespace

std::optional<QUrl> writeNewFile(const QUrl& folder, const QString& name, const QByteArray& contents) {
    const QDir dir(folder.toLocalFile());
    QTemporaryFile draft(dir.filePath(kHiddenName));
    if (!draft.open() || draft.write(contents) != contents.size() || !draft.flush()) return {};
    if (::fsync(draft.handle()) != 0) return {};
    QFile file(draft.fileName());
    draft.setAutoRemove(false);
    draft.close();
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther);
    auto made = moveUnder(file, dir, name);
    if (!made) file.remove();
    return made;
}

std::optional<QUrl> makeInbox(const QUrl& folder) {
    const QDir parent(folder.toLocalFile());
    removeAbandoned(parent);
    QTemporaryDir dir(parent.filePath(kHiddenName));
    dir.setAutoRemove(false);
    if (!dir.isValid()) return {};
    return QUrl::fromLocalFile(dir.path() + u'/');
}

std::optional<QUrl> emptyInbox(const QUrl& inbox, const QString& name, const QUrl& folder) {
    QDir dir(inbox.toLocalFile());
    QFile file(dir.filePath(name));
    const QFileInfo info(file);
    std::optional<QUrl> taken;
    if (!name.isEmpty() && info.isFile() && !info.isSymLink())
        taken = moveUnder(file, QDir(folder.toLocalFile()), name);
    dir.removeRecursively();
    return taken;
}

QString sanitizedFileName(const QByteArray& name) {
    QString clean = QString::fromUtf8(name.mid(name.lastIndexOf('/') + 1));
    clean.removeIf(misleading);
    while (clean.startsWith(u'.') || (!clean.isEmpty() && clean.front().isSpace())) clean.remove(0, 1);
    clean = clean.trimmed();
    const QString extension = clean.mid(extensionStart(clean));
    if (cutToBytes(clean, kMostBytes) && extension.size() <= kLongestExtension) {
        cutToBytes(clean, kMostBytes - extension.toUtf8().size());
        clean += extension;
    }
    return clean.isEmpty() ? QStringLiteral("Dropped") : clean;
}
