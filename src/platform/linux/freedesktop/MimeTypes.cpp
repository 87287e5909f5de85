#include "platform/linux/freedesktop/MimeTypes.h"

#include <QFile>
#include <QMimeDatabase>

#include "platform/Descriptor.h"

QMimeType mimeTypeOf(const QByteArray& path) {
    const QMimeDatabase database;
    struct stat status = {};
    if (::stat(path.constData(), &status) != 0) return {};
    if (S_ISDIR(status.st_mode)) return database.mimeTypeForName(QStringLiteral("inode/directory"));
    if (!S_ISREG(status.st_mode)) return database.mimeTypeForName(QStringLiteral("application/octet-stream"));
    // By descriptor, because QFile cannot open a path that is not UTF-8.
    const Descriptor descriptor = openRegularFile(path);
    QFile file;
    if (descriptor) std::ignore = file.open(descriptor.get(), QFile::ReadOnly);
    const QString name = QString::fromUtf8(path.mid(path.lastIndexOf('/') + 1));
    if (!file.isOpen()) return database.mimeTypeForFile(name, QMimeDatabase::MatchExtension);
    return database.mimeTypeForFileNameAndData(name, &file);
}
