#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QtEndian>
#include <vector>
#include <vips/vips8>

#include "platform/Descriptor.h"
#include "support/TestFolder.h"
#include "worker/Chew.h"
#include "worker/Thumbnail.h"

using vips::VImage;

// Pictures to chew, made here, and folders to chew them in.

/// With all its encoders; the worker's own start would leave some out.
inline const bool kVipsIsReady = vips_init("test") == 0;

constexpr ChewMode kModes[] = {ChewMode::jpeg, ChewMode::png, ChewMode::smaller};
inline constexpr const char* kKinds[] = {"png", "jpg", "heic", "tif", "webp", "gif", "bmp"};

using Colour = std::vector<double>;
inline const Colour kRed{220, 30, 30};
inline const Colour kGreen{30, 200, 30};
inline const Colour kBlue{30, 30, 220};
inline const Colour kGrey{128, 128, 128};

using Quarters = std::vector<Colour>;
inline const Quarters kPlain{kRed, kGreen, kBlue, kGrey};

/// Four colours, row by row: every way of turning it looks different.
inline VImage quarters(int width, int height, const Quarters& colours = kPlain) {
    EXPECT_TRUE(kVipsIsReady);
    const auto flat = [&](const Colour& colour, int w, int h) {
        return (VImage::black(w, h) + colour).cast(VIPS_FORMAT_UCHAR);
    };
    const int left = width / 2, top = height / 2;
    return flat(colours[0], left, top)
        .join(flat(colours[1], width - left, top), VIPS_DIRECTION_HORIZONTAL)
        .join(flat(colours[2], left, height - top)
                  .join(flat(colours[3], width - left, height - top), VIPS_DIRECTION_HORIZONTAL),
              VIPS_DIRECTION_VERTICAL)
        .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}

inline void setBlob(const VImage& image, const char* field, const QByteArray& bytes) {
    vips_image_set_blob_copy(image.get_image(), field, bytes.constData(), size_t(bytes.size()));
}

/// Empty where it has none.
inline QByteArray profileOf(const VImage& image) {
    if (!image.get_typeof(VIPS_META_ICC_NAME)) return {};
    size_t size = 0;
    const auto* bytes = static_cast<const char*>(image.get_blob(VIPS_META_ICC_NAME, &size));
    return {bytes, qsizetype(size)};
}

/// The colours of a wide screen.
inline QByteArray iccProfile() {
    return profileOf(quarters(2, 2).icc_transform("p3", VImage::option()->set("input_profile", "srgb")));
}

inline void save(const QByteArray& path, const QByteArray& bytes) {
    QFile file(QFile::decodeName(path));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

inline QByteArray load(const QByteArray& path) {
    QFile file(QFile::decodeName(path));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// As the file at `path` would hold it, by its extension.
inline void save(const QByteArray& path, const VImage& image) {
    if (!path.endsWith(".bmp")) return image.write_to_file(path.constData());
    const VImage rgb = image.extract_band(0, VImage::option()->set("n", 3)).copy_memory();
    const QImage bmp(static_cast<const uchar*>(rgb.data()), rgb.width(), rgb.height(), rgb.width() * 3,
                     QImage::Format_RGB888);
    ASSERT_TRUE(bmp.save(QFile::decodeName(path), "bmp"));
}

inline QByteArray littleEndian(quint32 number, qsizetype size = 4) {
    QByteArray bytes(4, '\0');
    qToLittleEndian(number, bytes.data());
    return bytes.left(size);
}

/// A BMP file with a header of this length; `pixels` begins with the masks or colours where there are any.
inline QByteArray bmp(quint32 headerLength, quint32 width, quint32 height, quint32 bits, quint32 compression,
                      const QByteArray& pixels, quint32 colours = 0) {
    const qsizetype number = headerLength == 12 ? 2 : 4;
    QByteArray header = littleEndian(headerLength) + littleEndian(width, number) + littleEndian(height, number) +
                        littleEndian(1, 2) + littleEndian(bits, 2);
    if (headerLength > 12)
        header += littleEndian(compression) + QByteArray(12, '\0') + littleEndian(colours) + littleEndian(0);
    return "BM" + littleEndian(0) + littleEndian(0) + littleEndian(14 + headerLength + 4 * colours) + header + pixels;
}

/// A folder for pictures, with another beside it to fall back to, that is not made yet.
struct Folder {
    const TestFolder owner;
    const QByteArray parent = owner.path().chopped(1), path = parent + "/in", fallback = parent + "/out/dropped";
    const QByteArray result = parent + "/result";  // of chew()

    Folder() { EXPECT_EQ(::mkdir(path.constData(), 0777), 0); }

    QByteArray operator/(const QByteArray& name) const { return path + '/' + name; }
    /// Chews the file of this name in this process.
    std::optional<Failure> chew(const QByteArray& name, ChewMode mode) const {
        const Descriptor source = openRegularFile(*this / name);
        const Descriptor to(::open(result.constData(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
        return ::chew(source.get(), mode, to.get());
    }
    Result<Thumbnail> thumbnail(const QByteArray& name, int side) const {
        return thumbnailOf(openRegularFile(*this / name).get(), side);
    }
    /// The names in it, hidden ones included.
    QStringList names() const {
        return QDir(QFile::decodeName(path))
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }
};
