#pragma once

#include <QSize>
#include <functional>
#include <optional>
#include <vips/vips8>

/// An open image file with a valid header, whose pixels are not decoded yet. Its format is determined by its contents,
/// never by its name, and only decoders for these formats can run: PNG, JPEG, HEIF, TIFF, WebP, GIF and BMP.
class ImageFile {
 public:
    /// Opens the file at descriptor `source`, positioned at its beginning; the caller keeps it, and keeps it open while
    /// this lives. Absent if the format is none of these, the header is malformed, or the picture claims to be absurdly
    /// large.
    static std::optional<ImageFile> open(int source);

    /// In pixels as stored, before any rotation that makes the picture upright.
    QSize size() const { return size_; }

    /// The first picture in the file, with all its metadata. Its rows can be read once, from the top, and are decoded
    /// on demand, so reading them throws vips::VError if the file is truncated or damaged. A decoder that supports it
    /// already shrinks each side by up to the factor `shrink`, 1 or more.
    vips::VImage decode(double shrink) const;

 private:
    /// Opens the picture, shrunk by at most this factor.
    using Decoder = std::function<vips::VImage(double shrink)>;

    ImageFile(Decoder decoder, QSize size) : decoder_(std::move(decoder)), size_(size) {}

    Decoder decoder_;
    QSize size_;
};
