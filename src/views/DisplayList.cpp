#include "views/DisplayList.h"

#include <algorithm>
#include <utility>

#include "views/Shapes.h"

namespace {

/// Whether `place` does not touch the corners of a rounded rectangle, so that it need not be clipped.
bool insideOf(const QRectF& rect, double radius, const QTransform& transform, const QRectF& place) {
    // A corner reaches 1.3 radii along its sides, and 0.3 radii into the rectangle.
    const double along = std::min(1.3 * radius, rect.width() / 2), deep = 0.3 * radius;
    return transform.mapRect(rect.adjusted(deep, deep, -deep, -deep)).contains(place) ||
           transform.mapRect(rect.adjusted(along, 0, -along, 0)).contains(place);
}

}  // namespace

QRegion DisplayList::Piece::changesTo(const Piece& other) const {
    if (place == other.place && transform == other.transform && opacity == other.opacity && clip == other.clip &&
        look == other.look)
        return {};
    return QRegion(place).united(other.place).subtracted(solid & other.solid);
}

void DisplayList::add(int id, const QRectF& bounds, PictureKey look, Draw draw, const QRectF& solid) {
    if (opacity_ <= 0 || bounds.isEmpty()) return;
    QRectF place = transform_.mapRect(bounds);
    Clip clip = clip_;
    if (clip.on) {
        if (insideOf(clip.rect, clip.radius, clip.transform, place)) clip = Clip();
        place &= clip_.transform.mapRect(clip_.rect);
        if (place.isEmpty()) return;
    }
    // Half a point more on each side for antialiased edges.
    const QRect whole = place.adjusted(-0.5, -0.5, 0.5, 0.5).toAlignedRect();
    const QRectF plain = transform_.mapRect(solid).adjusted(1, 1, -1, -1);
    const QRect inner = plain.isValid() && opacity_ >= 1 ? plain.toRect() : QRect();
    pieces_.push_back({id, whole, inner, transform_, opacity_, clip, std::move(look), std::move(draw)});
}

void DisplayList::with(const QTransform& transform, double opacity, const std::function<void()>& compose) {
    const QTransform outerTransform = std::exchange(transform_, transform * transform_);
    const double outerOpacity = std::exchange(opacity_, opacity_ * std::clamp(opacity, 0.0, 1.0));
    compose();
    transform_ = outerTransform;
    opacity_ = outerOpacity;
}

void DisplayList::clipped(const QRectF& rect, double radius, const std::function<void()>& compose) {
    const Clip outer = std::exchange(clip_, Clip{rect, radius, transform_, true});
    compose();
    clip_ = outer;
}

QRegion DisplayList::changesTo(const DisplayList& other) const {
    QRegion changes;
    const auto find = [](const std::vector<Piece>& pieces, int id) {
        return std::find_if(pieces.begin(), pieces.end(), [id](const Piece& piece) { return piece.id == id; });
    };
    for (const Piece& piece : pieces_) {
        const auto now = find(other.pieces_, piece.id);
        changes += now == other.pieces_.end() ? QRegion(piece.place) : piece.changesTo(*now);
    }
    for (const Piece& piece : other.pieces_) {
        if (find(pieces_, piece.id) == pieces_.end()) changes += piece.place;
    }
    return changes;
}

void DisplayList::paint(Canvas& canvas, const QRegion& damage) const {
    for (const Piece& piece : pieces_) {
        if (!damage.intersects(piece.place)) continue;
        const auto draw = [&] { canvas.with(piece.transform, piece.opacity, [&] { piece.draw(canvas); }); };
        if (!piece.clip.on) {
            draw();
            continue;
        }
        const QPainterPath clip = piece.clip.transform.map(continuousRectangle(piece.clip.rect, piece.clip.radius));
        canvas.clipped(clip, draw);
    }
}
