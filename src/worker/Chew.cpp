#include "worker/Chew.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <numeric>
#include <random>
#include <vector>

#include "worker/ImageFile.h"
#include "worker/Picture.h"

using vips::VError;
using vips::VImage;
using vips::VTarget;

namespace {

constexpr int kLongestSmallSide = 2000;

Failure cannotOpen() {
    return {1, QStringLiteral("couldn't open the image")};
}
Failure cannotWrite() {
    return {2, QStringLiteral("couldn't write the result")};
}
Failure cannotFinish() {
    return {3, QStringLiteral("couldn't finish the file")};
}

/// The image that goes into the new file, to be computed as that is written.
VImage pictureFor(const ImageFile& file, ChewMode mode) {
    if (mode == ChewMode::png) return anonymous(upright(plainColours(file.decode(1))));
    if (mode == ChewMode::jpeg) return anonymous(upright(opaque(plainColours(file.decode(1)))));
    const QSize size = within(file.size(), kLongestSmallSide);
    const double shrink = double(file.size().width()) / size.width();
    return anonymous(upright(resized(opaque(plainColours(file.decode(shrink))), size)));
}

void write(const VImage& picture, ChewMode mode, int descriptor) {
    const auto target = VTarget::new_to_descriptor(descriptor);
    // Without a profile to keep, not even a note about the resolution needs to be there.
    const bool isBare = vips_image_get_typeof(picture.get_image(), VIPS_META_ICC_NAME) == 0;
    auto* const options = VImage::option()->set("strip", isBare);
    if (mode == ChewMode::png)
        // Mostly photographs: smaller and, for 100 megapixels of noise, twice as fast as with the defaults.
        picture.pngsave_target(target, options->set("filter", VIPS_FOREIGN_PNG_FILTER_SUB)->set("compression", 4));
    else
        picture.jpegsave_target(target, options->set("Q", mode == ChewMode::smaller ? 65 : 85));
}

/// What the result is to be called: the source's name without its extension, what comes after it, and a number if the
/// name alone is taken.
class ResultName {
 public:
    ResultName(const QByteArray& source, ChewMode mode) : stem_(source.mid(source.lastIndexOf('/') + 1)) {
        const qsizetype dot = stem_.lastIndexOf('.');
        if (dot > 0 && dot + 1 < stem_.size()) stem_.truncate(dot);
        if (mode == ChewMode::smaller) suffix_ = "-small";
        extension_ = mode == ChewMode::png ? ".png" : ".jpg";
    }

    QByteArray plain(qsizetype longest) const { return withEnd(suffix_ + extension_, longest); }
    QByteArray numbered(int number, qsizetype longest) const {
        return withEnd(suffix_ + '-' + QByteArray::number(number) + extension_, longest);
    }

 private:
    QByteArray withEnd(const QByteArray& end, qsizetype longest) const {
        qsizetype size = std::min(stem_.size(), std::max<qsizetype>(longest - end.size(), 1));
        // Not in the middle of a character: its later bytes are of the form 10xxxxxx, and there are at most three.
        if (size < stem_.size())
            for (int i = 0; i < 3 && size > 1 && (uchar(stem_[size]) & 0xc0) == 0x80; ++i) --size;
        return stem_.left(size) + end;
    }

    QByteArray stem_;
    QByteArray suffix_;
    QByteArray extension_;
};

/// In the order in which they are tried: two digits at random, then what comes after them.
std::vector<int> numbersToTry() {
    constexpr int kFirst = 10;
    constexpr int kTwoDigits = 90;
    std::vector<int> numbers(5000);
    std::iota(numbers.begin(), numbers.end(), kFirst);
    std::shuffle(numbers.begin(), numbers.begin() + kTwoDigits, std::random_device());
    return numbers;
}

bool exists(const QByteArray& path) {
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0;
}

QByteArray folderOf(const QByteArray& path) {
    const qsizetype slash = path.lastIndexOf('/');
    return slash > 0 ? path.left(slash) : "/";
}

/// The name that the file got; empty when it could get none.
QByteArray giveName(NewFile& file, const ResultName& name, bool plainIsTaken) {
    using Naming = NewFile::Naming;
    const qsizetype longest = file.longestName();
    QByteArray tried = name.plain(longest);
    Naming naming = plainIsTaken ? Naming::taken : file.name(tried);
    if (naming == Naming::taken) {
        for (const int number : numbersToTry()) {
            tried = name.numbered(number, longest);
            naming = file.name(tried);
            if (naming != Naming::taken) break;
        }
    }
    return naming == Naming::done ? tried : QByteArray();
}

}  // namespace

std::optional<NewFile> newResult(const QByteArray& source, const QByteArray& fallbackFolder) {
    auto own = NewFile::in(folderOf(source));
    if (own || (errno != EACCES && errno != EPERM && errno != EROFS)) return own;
    std::error_code error;
    std::filesystem::create_directories(fallbackFolder.toStdString(), error);
    return NewFile::in(fallbackFolder);
}

Result<QByteArray> chew(const QByteArray& source, ChewMode mode, std::optional<NewFile> file) {
    const auto image = ImageFile::open(source);
    if (!image) return cannotOpen();
    if (!file) return cannotWrite();
    try {
        write(pictureFor(*image, mode), mode, file->descriptor());
    } catch (const VError&) {
        return cannotFinish();
    }
    const ResultName name(source, mode);
    const bool plainIsTaken = exists(folderOf(source) + '/' + name.plain(file->longestName()));
    if (!file->finish()) return cannotFinish();
    const QByteArray given = giveName(*file, name, plainIsTaken);
    return given.isEmpty() ? Result<QByteArray>(cannotFinish()) : file->folder() + '/' + given;
}
