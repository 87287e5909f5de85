#pragma once

#include <QSize>
#include <functional>
#include <optional>
#include <vips/vips8>

/// An image file that is open and whose header is sound; its pixels are not decoded yet. What it is, its contents say
/// and never its name, and only the decoders of these kinds can run: PNG, JPEG, HEIF, TIFF, WebP, GIF and BMP.
class ImageFile {
 public:
    /// The file that `source` reads, at its beginning; it stays the caller's, and open for as long as this lives.
    /// Absent when it is none of these kinds, when its header is broken, or when it claims to be larger than anybody's
    /// picture.
    static std::optional<ImageFile> open(int source);

    /// In pixels, as stored: a picture that must be turned to be upright is not turned yet.
    QSize size() const { return size_; }

    /// The first picture in the file, with all that the file says about it. Its rows can be read once, from the top,
    /// and are decoded as they are asked for, so reading them throws vips::VError where the file breaks off or is
    /// damaged. A decoder that can will already make each side smaller, by up to the factor `shrink`, 1 or more.
    vips::VImage decode(double shrink) const;

 private:
    /// Opens the picture, at most so many times smaller.
    using Decoder = std::function<vips::VImage(double shrink)>;

    ImageFile(Decoder decoder, QSize size) : decoder_(std::move(decoder)), size_(size) {}

    Decoder decoder_;
    QSize size_;
};
