#include "views/DisplayList.h"

#include <algorithm>
#include <utility>

#include "views/Shapes.h"

bool DisplayList::Piece::looksLike(const Piece& other) const {
    return place == other.place && transform == other.transform && opacity == other.opacity && clip == other.clip &&
           state == other.state;
}

void DisplayList::add(int id, const QRectF& bounds, std::vector<double> state, Draw draw) {
    if (opacity_ <= 0 || bounds.isEmpty()) return;
    QRectF place = transform_.mapRect(bounds);
    if (clip_.on) place &= clip_.transform.mapRect(clip_.rect);
    // Half a point more on each side for antialiased edges.
    const QRect whole = place.adjusted(-0.5, -0.5, 0.5, 0.5).toAlignedRect();
    pieces_.push_back({id, whole, transform_, opacity_, clip_, std::move(state), std::move(draw)});
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
        if (now == other.pieces_.end()) {
            changes += piece.place;
        } else if (!piece.looksLike(*now)) {
            changes += piece.place;
            changes += now->place;
        }
    }
    for (const Piece& piece : other.pieces_) {
        if (find(pieces_, piece.id) == pieces_.end()) changes += piece.place;
    }
    return changes;
}

QRegion DisplayList::covered() const {
    QRegion covered;
    for (const Piece& piece : pieces_) covered += piece.place;
    return covered;
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
