#include "platform/linux/freedesktop/DesktopIcons.h"

#include <malloc.h>

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
#include <mutex>

#include "platform/FileUrls.h"
#include "platform/linux/freedesktop/IconTheme.h"
#include "platform/linux/freedesktop/KeyFile.h"
#include "platform/linux/freedesktop/MimeTypes.h"
#include "platform/linux/freedesktop/Thumbnails.h"

struct DesktopIcons::LazyTheme {
    std::once_flag once;
    std::optional<IconTheme> theme;

    const IconTheme& get() {
        std::call_once(once, [this] { theme.emplace(iconThemeNames(), iconRoots()); });
        return *theme;
    }
};

namespace {
/// The names of icons for the file at `path`, best first.
QStringList iconNames(const QByteArray& path) {
    const QMimeType type = mimeTypeOf(path);
    if (!type.isValid()) return {};
    QStringList names{type.iconName(), type.genericIconName()};
    if (type.inherits(QStringLiteral("application/x-desktop"))) {
        // IconTheme::find() ignores paths: the file is untrusted, and may name any picture.
        names.prepend(keyFileValue(path, "Desktop Entry", "Icon"));
    }
    names.append({QStringLiteral("application-x-generic"), QStringLiteral("unknown")});
    return names;
}

QImage renderSvg(const QString& path, int pixels) {
    QFile file(path);
    if (!file.open(QFile::ReadOnly) || file.size() > kMaxPictureFile) return {};
    QSvgRenderer renderer(file.readAll());
    if (!renderer.isValid()) return {};
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    renderer.render(&painter);
    return image;
}

QImage find(const IconTheme& theme, const QByteArray& path, int pixels) {
    const QString file = theme.find(iconNames(path), pixels);
    return file.endsWith(QLatin1String(".svg")) ? renderSvg(file, pixels) : fitted(readPng(file), pixels);
}
}  // namespace

DesktopIcons::DesktopIcons(BackgroundQueue& queue, MainLoop& loop)
    : theme_(std::make_shared<LazyTheme>()), jobs_(queue, loop) {}

DesktopIcons::~DesktopIcons() = default;

void DesktopIcons::find(const QUrl& file, int pixels, std::function<void(const QImage&)> done) {
    constexpr int kMaxPixels = 512;
    // Once this object and its theme are gone, the remaining jobs do nothing.
    const auto look = [weak = std::weak_ptr(theme_), path = pathOf(file), size = std::clamp(pixels, 1, kMaxPixels)] {
        QImage image;
        if (const auto theme = weak.lock(); theme && path.startsWith('/')) {
            image = thumbnailOf(path, size);
            if (image.isNull()) image = ::find(theme->get(), path, size);
        }
        // Decoded icons may be ten times as large as the result; return that memory, since this program runs for long.
        ::malloc_trim(0);
        return image;
    };
    jobs_.run(look, std::move(done));
}
