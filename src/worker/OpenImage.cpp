#include "worker/OpenImage.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QImage>
#include <QImageReader>

using vips::VImage;

namespace {

VImage fromBmp(const QByteArray& path) {
    QImageReader reader(QFile::decodeName(path), "bmp");
    const QImage picture = reader.read().convertToFormat(QImage::Format_RGBX8888);
    if (picture.isNull()) throw vips::VError("no BMP");
    return VImage::new_from_memory(const_cast<uchar*>(picture.constBits()), size_t(picture.sizeInBytes()),
                                   picture.width(), picture.height(), 4, VIPS_FORMAT_UCHAR)
        .extract_band(0, VImage::option()->set("n", 3))
        .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB))
        .copy_memory();
}

VImage load(const QByteArray& path, const QByteArray& head) {
    const auto starts = [&](const char* bytes, qsizetype length) { return head.startsWith(QByteArray(bytes, length)); };
    const auto once = [] { return VImage::option()->set("access", VIPS_ACCESS_SEQUENTIAL); };
    const char* name = path.constData();
    if (starts("\x89PNG", 4)) return VImage::pngload(name, once());
    if (starts("\xff\xd8\xff", 3)) return VImage::jpegload(name, once());
    if (starts("GIF8", 4)) return VImage::gifload(name, once());
    if (starts("II*\0", 4) || starts("MM\0*", 4)) return VImage::tiffload(name, once());
    if (starts("RIFF", 4) && head.mid(8, 4) == "WEBP") return VImage::webpload(name, once());
    if (head.mid(4, 4) == "ftyp") return VImage::heifload(name, once());
    if (starts("BM", 2)) return fromBmp(path);
    throw vips::VError("no image");
}

}  // namespace

VImage openImage(const QByteArray& path) {
    // Opening a pipe that nobody writes to would wait for ever.
    const int file = open(path.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) throw vips::VError("no file");
    struct stat status {};
    QByteArray head(12, 0);
    const bool regular = fstat(file, &status) == 0 && S_ISREG(status.st_mode);
    const bool enough = regular && read(file, head.data(), size_t(head.size())) == head.size();
    close(file);
    if (!enough) throw vips::VError("no image");
    return load(path, head);
}
