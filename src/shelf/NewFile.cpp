#include "shelf/NewFile.h"

#include <unistd.h>

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTemporaryFile>

namespace {

constexpr int kMostAttempts = 1000;
constexpr qsizetype kMostBytes = 230;  // of the 255 that a name may have, so that a counter fits

/// "a.tar.gz" with counter 2 is "a-2.tar.gz".
QString counted(const QString& name, int counter) {
    if (counter == 1) return name;
    const QFileInfo parts(name);
    const QString end = parts.completeSuffix().isEmpty() ? QString() : u'.' + parts.completeSuffix();
    return QStringLiteral("%1-%2%3").arg(parts.baseName()).arg(counter).arg(end);
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

bool cutToBytes(QString& text, qsizetype most) {
    if (text.toUtf8().size() <= most) return false;
    while (text.toUtf8().size() > most) text.chop(text.size() > 1 && text.back().isLowSurrogate() ? 2 : 1);
    return true;
}

}  // namespace

std::optional<QUrl> writeNewFile(const QUrl& folder, const QString& name, const QByteArray& contents) {
    const QDir dir(folder.toLocalFile());
    QTemporaryFile draft(dir.filePath(QStringLiteral(".glimmet-XXXXXX")));
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
    QTemporaryDir dir(QDir(folder.toLocalFile()).filePath(QStringLiteral(".glimmet-XXXXXX")));
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
    clean.removeIf([](QChar c) { return c.category() == QChar::Other_Control; });
    while (clean.startsWith(u'.') || (!clean.isEmpty() && clean.front().isSpace())) clean.remove(0, 1);
    clean = clean.trimmed();
    const QString suffix = QFileInfo(clean).suffix();
    if (cutToBytes(clean, kMostBytes) && suffix.size() < 16) {
        cutToBytes(clean, kMostBytes - suffix.toUtf8().size() - 1);
        clean += u'.' + suffix;
    }
    return clean.isEmpty() ? QStringLiteral("Dropped") : clean;
}
