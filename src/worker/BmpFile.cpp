#include "worker/BmpFile.h"

#include <QFile>
#include <QImageReader>
#include <QtEndian>
#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <memory>

using vips::VError;
using vips::VImage;

namespace {

// The file header is followed by an info header, which begins with its length and has grown over the years.
constexpr qint64 kFileHeader = 14;
constexpr qint64 kOldest = 12;
constexpr qint64 kPlain = 40;
constexpr qint64 kWithMasks = 52;
constexpr qint64 kWithAlphaMask = 56;
constexpr qint64 kFourth = 108;  // begins like the two before; its other fields may be zero

/// Presents a file with one of the two headers that Qt does not know as if it had the next longer one.
class LengthenedFile : public QIODevice {
 public:
    explicit LengthenedFile(std::unique_ptr<QFile> file) : file_(std::move(file)), head_(file_->peek(kFileHeader + 4)) {
        const auto length = qFromLittleEndian<quint32>(head_.constData() + kFileHeader);
        head_ = file_->peek(kFileHeader + length);
        added_ = kFourth - length;
        head_.append(added_, '\0');
        qToLittleEndian(quint32(kFourth), head_.data() + kFileHeader);
        char* const pixelsAt = head_.data() + 10;
        qToLittleEndian(quint32(qFromLittleEndian<quint32>(pixelsAt) + added_), pixelsAt);
        open(ReadOnly);
    }

    qint64 size() const override { return file_->size() + added_; }
    bool seek(qint64 to) override {
        at_ = to;
        return QIODevice::seek(to);
    }

 protected:
    qint64 readData(char* to, qint64 maxSize) override {
        qint64 got = std::min(maxSize, head_.size() - at_);
        if (got > 0)
            std::memcpy(to, head_.constData() + at_, size_t(got));
        else
            got = file_->seek(at_ - added_) ? file_->read(to, maxSize) : -1;
        at_ += std::max<qint64>(got, 0);
        return got;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

 private:
    std::unique_ptr<QFile> file_;
    QByteArray head_;
    qint64 added_ = 0;
    qint64 at_ = 0;
};

struct Layout {
    enum class Packing { none, runsOfBytes, runsOfNibbles };

    explicit Layout(QIODevice& file) {
        std::array<char, kFileHeader + kPlain> header{};  // zeros where the file is shorter
        file.peek(header.data(), header.size());
        const auto word = [&](int at) { return qFromLittleEndian<quint16>(header.data() + at); };
        const auto number = [&](int at) { return qFromLittleEndian<qint32>(header.data() + at); };
        length = number(14);
        const bool isOldest = length == kOldest;
        width = isOldest ? word(18) : number(18);
        rows = isOldest ? word(20) : std::abs(qint64(number(22)));
        bits = word(isOldest ? 24 : 28);
        const int compression = isOldest ? 0 : number(30);
        if (compression == 1) packing = Packing::runsOfBytes;
        if (compression == 2) packing = Packing::runsOfNibbles;
        qint64 headersEnd = kFileHeader + length;
        if (length == kPlain && compression == 3) headersEnd += 12;  // masks
        const qint64 colours = isOldest || number(46) == 0 ? qint64(1) << std::min(bits, 8) : number(46);
        if (bits <= 8) headersEnd += colours * (isOldest ? 3 : 4);
        pixelsAt = std::max<qint64>(headersEnd, number(10));
    }

    qint64 length, width, rows, pixelsAt;
    int bits;
    Packing packing = Packing::none;
};

/// Whether the run-length data reach their end mark or the last pixel.
bool isCompleteInRuns(QIODevice& file, const Layout& layout) {
    constexpr uchar kNextRow = 0, kEnd = 1, kSkip = 2;
    qint64 x = 0, row = 0;
    std::array<uchar, 2> pair;
    const auto next = [&] { return file.read(reinterpret_cast<char*>(pair.data()), 2) == 2; };
    while (row < layout.rows && (x < layout.width || row + 1 < layout.rows)) {
        if (!next()) return false;
        const auto [count, what] = pair;
        if (count > 0) {
            x += count;
        } else if (what == kEnd) {
            return true;
        } else if (what == kNextRow) {
            x = 0;
            ++row;
        } else if (what == kSkip) {
            if (!next()) return false;
            x += pair[0];
            row += pair[1];
        } else {
            const int bytes = layout.packing == Layout::Packing::runsOfNibbles ? (what + 1) / 2 : what;
            const int padded = bytes + bytes % 2;
            if (file.skip(padded) != padded) return false;
            x += what;
        }
    }
    return true;
}

/// Needed because the decoder does not report truncated data. `layout` must have at least one row.
bool isComplete(QIODevice& file, const Layout& layout) {
    if (layout.packing != Layout::Packing::none) {
        const bool isThere = file.seek(layout.pixelsAt) && isCompleteInRuns(file, layout);
        return file.seek(0) && isThere;
    }
    const qint64 rowBytes = (layout.width * layout.bits + 31) / 32 * 4;
    return rowBytes <= (file.size() - layout.pixelsAt) / layout.rows;
}

/// Null when it cannot be read.
std::unique_ptr<QIODevice> openBmp(int descriptor) {
    auto file = std::make_unique<QFile>();
    if (!file->open(descriptor, QIODevice::ReadOnly) || !file->seek(0)) return {};
    const qint64 length = Layout(*file).length;
    if (length != kWithMasks && length != kWithAlphaMask) return file;
    return std::make_unique<LengthenedFile>(std::move(file));
}

/// Keeps Qt from detecting the format itself, with every plugin that is installed.
void setUp(QImageReader& reader) {
    reader.setFormat("bmp");
    reader.setAutoDetectImageFormat(false);
    reader.setDecideFormatFromContent(false);
}

/// The size of the picture; Qt reports a negative height if the first row is at the top.
QSize sizeIn(const QImageReader& reader) {
    const QSize size = reader.size();
    if (size.height() == std::numeric_limits<int>::min()) return {};
    return {size.width(), std::abs(size.height())};
}

}  // namespace

std::optional<QSize> bmpSize(int descriptor) {
    const auto file = openBmp(descriptor);
    if (!file) return {};
    const Layout layout(*file);
    QImageReader reader(file.get(), {});
    setUp(reader);
    const QSize size = sizeIn(reader);
    file->seek(0);
    if (size.isEmpty() || !isComplete(*file, layout)) return {};
    return size;
}

VImage decodeBmp(int descriptor) {
    const auto file = openBmp(descriptor);
    if (!file) throw VError("cannot read the file");
    QImageReader reader(file.get(), {});
    setUp(reader);
    QImageReader::setAllocationLimit(0);  // the size has been checked
    // The reader reuses an image of the right size and format, and leaves pixels that the file skips as they are.
    auto picture = std::make_unique<QImage>(sizeIn(reader), reader.imageFormat());
    picture->fill(0);
    if (!reader.read(picture.get())) throw VError("cannot decode the picture");
    const bool hasAlpha = picture->hasAlphaChannel();
    picture->convertTo(hasAlpha ? QImage::Format_RGBA8888 : QImage::Format_RGBX8888);
    if (picture->isNull()) throw VError("cannot decode the picture");

    // With four bytes per pixel, rows have no padding. The pixels are not copied; they live as long as the new image.
    const QImage& pixels = *picture;
    const auto image = VImage::new_from_memory(const_cast<uchar*>(pixels.constBits()), size_t(pixels.sizeInBytes()),
                                               pixels.width(), pixels.height(), 4, VIPS_FORMAT_UCHAR)
                           .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
    g_object_set_data_full(G_OBJECT(image.get_image()), "picture", picture.release(),
                           [](gpointer p) { delete static_cast<QImage*>(p); });
    return hasAlpha ? image : image.extract_band(0, VImage::option()->set("n", 3));
}
