#include "views/AlbumArt.h"

#include <cmath>

#include "views/Colors.h"
#include "views/PieceIds.h"
#include "views/Shapes.h"

namespace {

constexpr double kRadius = 4;
constexpr double kAppearScale = 0.86;
constexpr double kNoteSize = 9;
constexpr double kShadowRadius = 3, kShadowDrop = 1;
constexpr double kBorder = 0.6;
const QRectF kFrame(-AlbumArt::kSide / 2, -AlbumArt::kSide / 2, AlbumArt::kSide, AlbumArt::kSide);

}  // namespace

void AlbumArt::show(const std::optional<QImage>& image, const std::optional<Animation>& how, double now) {
    if (image && image->cacheKey() != image_.cacheKey()) {
        image_ = *image;
        presence_.jump(0);
    }
    // Another track has begun, whose cover this is not.
    image ? presence_.aim(1, how, now) : presence_.jump(0);
}

void AlbumArt::compose(DisplayList& list, double now) const {
    const double presence = presence_.at(now);
    const QRectF bounds = kFrame.adjusted(-2 * kShadowRadius, -2 * kShadowRadius, 2 * kShadowRadius, 3 * kShadowRadius);
    list.add(piece::albumArt, bounds, {image_, presence}, [presence, image = image_](Canvas& canvas) {
        const QPainterPath shape = continuousRectangle(kFrame, kRadius);
        canvas.shadow(shape, black(0.45), kShadowRadius, {0, kShadowDrop});
        canvas.with(QTransform(), 1 - presence, [&] {
            canvas.fill(shape, white(0.08));
            canvas.symbol(QStringLiteral("music.note"), {0, 0}, kNoteSize, white(0.35));
        });
        const double scale = std::lerp(kAppearScale, 1, presence);
        canvas.with(QTransform::fromScale(scale, scale), presence, [&] { canvas.picture(image, kFrame, shape); });
        canvas.stroke(continuousRectangle(kFrame.adjusted(0.5, 0.5, -0.5, -0.5), kRadius - 0.5), white(0.14), kBorder);
    });
}
