#include "worker/OpenImage.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QImage>
#include <QImageReader>
#include <cstring>

namespace {

VipsPointer fromBmp(const QByteArray& path) {
    QImageReader reader(QFile::decodeName(path), "bmp");
    const QImage picture = reader.read().convertToFormat(QImage::Format_RGB888);
    if (picture.isNull()) return nullptr;
    VipsPointer rows(vips_image_new_memory());
    vips_image_init_fields(rows.get(), picture.width(), picture.height(), 3, VIPS_FORMAT_UCHAR, VIPS_CODING_NONE,
                           VIPS_INTERPRETATION_sRGB, 1, 1);
    for (int y = 0; y < picture.height(); ++y) {
        auto* row = const_cast<VipsPel*>(picture.constScanLine(y));
        if (vips_image_write_line(rows.get(), y, row) != 0) return nullptr;
    }
    return rows;
}

VipsPointer load(const QByteArray& path, const QByteArray& head) {
    const auto starts = [&](const char* bytes, qsizetype length) { return head.startsWith(QByteArray(bytes, length)); };
    const char* name = path.constData();
    VipsImage* image = nullptr;
    if (starts("\x89PNG", 4)) {
        vips_pngload(name, &image, "access", VIPS_ACCESS_SEQUENTIAL, nullptr);
    } else if (starts("\xff\xd8\xff", 3)) {
        vips_jpegload(name, &image, "access", VIPS_ACCESS_SEQUENTIAL, nullptr);
    } else if (starts("GIF8", 4)) {
        vips_gifload(name, &image, "access", VIPS_ACCESS_SEQUENTIAL, nullptr);
    } else if (starts("II*\0", 4) || starts("MM\0*", 4)) {
        vips_tiffload(name, &image, "access", VIPS_ACCESS_SEQUENTIAL, nullptr);
    } else if (starts("RIFF", 4) && head.mid(8, 4) == "WEBP") {
        vips_webpload(name, &image, "access", VIPS_ACCESS_SEQUENTIAL, nullptr);
    } else if (head.mid(4, 4) == "ftyp") {
        vips_heifload(name, &image, "access", VIPS_ACCESS_SEQUENTIAL, nullptr);
    } else if (starts("BM", 2)) {
        return fromBmp(path);
    }
    return VipsPointer(image);
}

}  // namespace

VipsPointer openImage(const QByteArray& path) {
    // Opening a pipe that nobody writes to would wait for ever.
    const int file = open(path.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) return nullptr;
    struct stat status {};
    QByteArray head(12, 0);
    const bool regular = fstat(file, &status) == 0 && S_ISREG(status.st_mode);
    const bool enough = regular && read(file, head.data(), size_t(head.size())) == head.size();
    close(file);
    return enough ? load(path, head) : nullptr;
}
