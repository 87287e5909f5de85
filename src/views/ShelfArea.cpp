#include "views/ShelfArea.h"

#include <algorithm>

#include "views/Colors.h"
#include "views/PieceIds.h"
#include "views/Shapes.h"

namespace {

constexpr double kTopGap = 12;
constexpr double kChipWidth = 50;  // a 42 point caption with 4 on either side
constexpr double kRowHeight = 56;
constexpr double kChipGap = 6;
constexpr int kChipsPerRow = 5;
constexpr int kFoldedFiles = 3;
constexpr int kFoldedBites = 2;
constexpr double kAppearScale = 0.9;

const TextStyle kMoreStyle{11, QFont::DemiBold, Face::rounded};
const TextStyle kLessStyle{9, QFont::DemiBold, Face::rounded};
const TextStyle kWhisperStyle{9.5, QFont::DemiBold, Face::rounded};

double lineHeight(const TextStyle& style) {
    return style.size * 1.2;
}

double rowWidth(int chips) {
    return chips * kChipWidth + std::max(chips - 1, 0) * kChipGap;
}

}  // namespace

/// The places of everything, before fading and scaling.
struct ShelfArea::Layout {
    QString pill;  ///< empty: none
    QRectF pillFrame;
    TextStyle pillStyle{0};
    double pillText = 0, pillFill = 0;  ///< opacities
    QPointF whisper;
    double top = 0, bottom = 0;
};

bool ShelfArea::wanted() const {
    return (m_.hovering && m_.hasHeld()) || m_.dropTargeted || m_.dragNear;
}

void ShelfArea::update(const std::optional<Animation>& how, double now) {
    presence_.aim(wanted() ? 1 : 0, how, now);
}

ShelfArea::Layout ShelfArea::layout(double rowBottom) const {
    Layout l;
    l.top = rowBottom + kTopGap;
    const int held = m_.heldCount();
    if (m_.shelfExpanded) {
        const int rows = (held + kChipsPerRow - 1) / kChipsPerRow;
        l.pill = QStringLiteral("show less");
        l.pillStyle = kLessStyle;
        l.pillText = 0.55;
        l.pillFill = 0.1;
        const double width = Canvas::textWidth(l.pill, kLessStyle) + 16;
        l.pillFrame = {-width / 2, l.top + rows * kRowHeight, width, lineHeight(kLessStyle) + 5};
        l.bottom = l.pillFrame.bottom();
    } else {
        const int shown = int(m_.timers->size() + std::min<qsizetype>(m_.items->size(), kFoldedFiles) +
                              std::min<qsizetype>(m_.bites->size(), kFoldedBites));
        l.bottom = l.top + (held > 0 ? kRowHeight : 0);
        if (held > shown) {
            l.pill = u'+' + QString::number(held - shown);
            l.pillStyle = kMoreStyle;
            l.pillText = 0.75;
            l.pillFill = 0.12;
            const double width = Canvas::textWidth(l.pill, kMoreStyle) + 14;
            const double height = lineHeight(kMoreStyle) + 6;
            const double row = rowWidth(shown) + kChipGap + width;
            l.pillFrame = {row / 2 - width, l.top + (kRowHeight - height) / 2, width, height};
        }
    }
    l.whisper = {0, l.bottom + lineHeight(kWhisperStyle) / 2};
    return l;
}

void ShelfArea::compose(DisplayList& list, double now, double rowBottom) const {
    const double presence = presence_.at(now);
    if (presence <= 0) return;
    const Layout l = layout(rowBottom);
    const QString whisper = m_.eventWhisper->value_or(QString());
    const double scale = kAppearScale + (1 - kAppearScale) * presence;
    const QTransform grow = QTransform::fromTranslate(0, -l.top) * QTransform::fromScale(scale, scale) *
                            QTransform::fromTranslate(0, l.top);
    list.with(grow, presence, [&] {
        const QRectF bounds(-160, l.top, 320, l.bottom - l.top + lineHeight(kWhisperStyle));
        const std::vector<double> state{l.pillFrame.x(), l.pillFrame.y(), double(qHash(l.pill)), double(qHash(whisper)),
                                        l.whisper.y()};
        list.add(piece::shelf, bounds, state, [l, whisper](Canvas& canvas) {
            if (!l.pill.isEmpty()) {
                canvas.fill(continuousCapsule(l.pillFrame), white(l.pillFill));
                canvas.text(l.pill, l.pillFrame.center(), l.pillStyle, white(l.pillText));
            }
            if (!whisper.isEmpty()) canvas.text(whisper, l.whisper, kWhisperStyle, accentOrange(0.9));
        });
    });
}

bool ShelfArea::tap(const QPointF& point, double rowBottom) {
    if (!wanted() || m_.asleep) return false;
    const Layout l = layout(rowBottom);
    if (l.pill.isEmpty() || !l.pillFrame.contains(point)) return false;
    m_.withAnimation(Animation::spring(0.32, 0.85), [this] { m_.shelfExpanded = !m_.shelfExpanded; });
    return true;
}
