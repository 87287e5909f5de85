#include "shelf/Chewer.h"

#include <sys/stat.h>

#include <QFileInfo>
#include <cerrno>
#include <filesystem>

#include "platform/Descriptor.h"
#include "platform/FileUrls.h"
#include "platform/Worker.h"
#include "shelf/ChewedName.h"
#include "shelf/WorkerAnswer.h"

namespace {

constexpr QLatin1String kPdf("pdf");

QString extensionOf(const QUrl& file) {
    return QFileInfo(file.fileName()).suffix().toLower();
}

QString nameOf(Chewer::Mode mode) {
    switch (mode) {
        case Chewer::Mode::toJPEG:
            return QStringLiteral("jpeg");
        case Chewer::Mode::toPNG:
            return QStringLiteral("png");
        case Chewer::Mode::smaller:
            break;
    }
    return QStringLiteral("smaller");
}

ChewError failure(int code, const char* description) {
    return {QStringLiteral("chew"), code, QString::fromLatin1(description)};
}

/// Where a result is written.
struct Destination {
    QByteArray folder;
    std::unique_ptr<ResultFile> file;  // null if none could be created
};

Destination destinationFor(Worker& worker, const QByteArray& folder, QByteArray fallback) {
    auto own = worker.resultIn(folder);
    if (own || (errno != EACCES && errno != EPERM && errno != EROFS)) return {folder, std::move(own)};
    while (fallback.endsWith('/')) fallback.chop(1);
    std::error_code error;
    std::filesystem::create_directories(fallback.toStdString(), error);
    return {fallback, worker.resultIn(fallback)};
}

bool exists(const QByteArray& path) {
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0;
}

/// Whether `path` is the file that `descriptor` has open.
bool isSameFile(const QByteArray& path, int descriptor) {
    struct stat there = {}, file = {};
    return ::stat(path.constData(), &there) == 0 && ::fstat(descriptor, &file) == 0 && there.st_dev == file.st_dev &&
           there.st_ino == file.st_ino;
}

/// Gives the file the first free name and returns it; empty on failure. `isTaken` skips the plain name.
QByteArray giveName(ResultFile& file, const ChewedName& name, bool isTaken) {
    using Naming = ResultFile::Naming;
    const qsizetype maxLength = file.maxNameLength();
    QByteArray tried = name.plain(maxLength);
    Naming naming = isTaken ? Naming::taken : file.name(tried);
    if (naming == Naming::taken) {
        for (const int number : ChewedName::numbers()) {
            tried = name.numbered(number, maxLength);
            naming = file.name(tried);
            if (naming != Naming::taken) break;
        }
    }
    return naming == Naming::done ? tried : QByteArray();
}

}  // namespace

const QStringList& Chewer::chewableExtensions() {
    static const QStringList extensions{QStringLiteral("png"),  QStringLiteral("jpg"),  QStringLiteral("jpeg"),
                                        QStringLiteral("heic"), QStringLiteral("heif"), QStringLiteral("tiff"),
                                        QStringLiteral("tif"),  QStringLiteral("webp"), QStringLiteral("gif"),
                                        QStringLiteral("bmp")};
    return extensions;
}

bool Chewer::canChew(const QUrl& file) {
    return chewableExtensions().contains(extensionOf(file));
}

bool Chewer::canRead(const QUrl& file) {
    return canChew(file) || extensionOf(file) == kPdf;
}

std::variant<QUrl, ChewError> Chewer::chew(const QUrl& source, Mode mode, const QUrl& fallbackFolder) {
    const QByteArray path = pathOf(source);
    const Descriptor file = openRegularFile(path);
    if (!file) return failure(1, "couldn't open the image");
    const qsizetype slash = path.lastIndexOf('/');
    const QByteArray folder = path.left(slash);
    const Destination destination = destinationFor(worker_, folder.isEmpty() ? "/" : folder, pathOf(fallbackFolder));
    // Run it even without a destination: a broken source is the better error to report.
    if (const auto error =
            errorIn(worker_.run({QStringLiteral("chew"), nameOf(mode)}, file.get(), destination.file.get())))
        return *error;
    if (!destination.file) return failure(2, "couldn't write the result");

    const ChewedName name(path.mid(slash + 1), mode);
    const bool isTaken = exists(folder + '/' + name.plain(destination.file->maxNameLength()));
    QByteArray given;
    if (isComplete(destination.file->descriptor(), mode) && destination.file->finish())
        given = giveName(*destination.file, name, isTaken);
    if (given.isEmpty()) return failure(3, "couldn't finish the file");
    const QByteArray made = destination.folder + '/' + given;
    return fileUrl(isSameFile(made, destination.file->descriptor()) ? made : destination.file->folder() + '/' + given);
}

std::variant<QString, ChewError> Chewer::readText(const QUrl& source) {
    const bool isPdf = extensionOf(source) == kPdf;
    const Descriptor file = openRegularFile(pathOf(source));
    if (!file) return isPdf ? failure(4, "couldn't open the PDF") : failure(1, "couldn't open the image");
    const QString kind = isPdf ? QStringLiteral("pdf") : QStringLiteral("image");
    return textIn(worker_.run({QStringLiteral("read"), kind}, file.get(), nullptr));
}
