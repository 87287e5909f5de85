#include "views/ShelfArea.h"

#include <QLineF>
#include <algorithm>
#include <limits>

#include "views/Colors.h"
#include "views/PieceIds.h"

namespace {

constexpr double kChipGap = 6;
constexpr double kTightGap = 2;  // between many chips
constexpr double kMaxRow = 304;  // width of a row inside the open body
constexpr double kPillGap = 2;   // above the "show less" pill
constexpr int kFoldedFiles = 3;
constexpr int kFoldedBites = 2;
constexpr double kAppearScale = 0.9;
constexpr double kWhisperRoom = 5;  // between the whisper and the rim
constexpr double kBehindMouth = 4;  // between a shelf that has stepped back and the rim
constexpr double kFaint = 0.4;

const TextStyle kMoreStyle{11, QFont::DemiBold, Face::rounded};
const TextStyle kLessStyle{9, QFont::DemiBold, Face::rounded};
const TextStyle kWhisperStyle{9.5, QFont::DemiBold, Face::rounded};

double rowWidth(int chips, double gap) {
    return chips * Chip::kWidth + std::max(chips - 1, 0) * gap;
}

bool sameThing(const HeldThing& a, const HeldThing& b) {
    const auto *timerA = std::get_if<HeldTimer>(&a), *timerB = std::get_if<HeldTimer>(&b);
    return timerA && timerB ? timerA->id == timerB->id : a == b;
}

}  // namespace

/// Positions relative to the shelf's top, before fading and scaling.
struct ShelfArea::Layout {
    QList<QPointF> chips;  ///< their middles
    std::optional<Pill::Look> pill;
    double bottom = 0;   ///< of the chips and the pill
    double scale = 1;    ///< that makes the chips and the pill fit into the body
    double drop = 0;     ///< their top after scaling
    double whisper = 0;  ///< top of the whisper

    /// Adds a row of chips that starts at `left`, `row` rows down.
    void addRow(int count, double left, double gap, int row) {
        for (int i = 0; i < count; ++i)
            chips.append({left + (Chip::kWidth + gap) * i + Chip::kWidth / 2, NotchModel::kChipRow * (row + 0.5)});
    }
};

bool ShelfArea::wanted() const {
    return (model_.hovering && model_.hasHeld()) || model_.dropTargeted || model_.dragNear;
}

QList<HeldThing> ShelfArea::shownThings() const {
    if (model_.screenLocked) return {};
    const qsizetype files = model_.shelfExpanded ? model_.items->size() : kFoldedFiles;
    const qsizetype bites = model_.shelfExpanded ? model_.bites->size() : kFoldedBites;
    QList<HeldThing> things;
    for (const HeldTimer& timer : model_.timers.get()) things.append(timer);
    for (const QUrl& file : model_.items->mid(0, files)) things.append(file);
    for (const Bite& bite : model_.bites->mid(0, bites)) things.append(bite);
    return things;
}

ShelfArea::Layout ShelfArea::layout(double top) const {
    Layout l;
    const int shown = int(shownThings().size());
    if (model_.shelfExpanded) {
        const int rows = model_.chipRows();
        for (int row = 0; row < rows; ++row) {
            const int count = std::min(NotchModel::kChipsPerRow, shown - row * NotchModel::kChipsPerRow);
            l.addRow(count, -rowWidth(count, kChipGap) / 2, kChipGap, row);
        }
        l.pill = Pill::Look{QStringLiteral("show less"), kLessStyle, 0.55, 0.1, {}};
        const double width = Canvas::textWidth(l.pill->text, kLessStyle) + 16;
        l.pill->frame = {-width / 2, rows * NotchModel::kChipRow + kPillGap, width, kLessStyle.lineHeight() + 5};
        l.bottom = l.pill->frame.bottom();
        fit(l, rowWidth(std::min(shown, NotchModel::kChipsPerRow), kChipGap), top);
        return l;
    }
    double pillWidth = 0;
    if (model_.heldCount() > shown) {
        l.pill = Pill::Look{u'+' + QString::number(model_.heldCount() - shown), kMoreStyle, 0.75, 0.12, {}};
        pillWidth = Canvas::textWidth(l.pill->text, kMoreStyle) + 14;
    }
    const auto widthWith = [&](double gap) { return rowWidth(shown, gap) + (pillWidth > 0 ? gap + pillWidth : 0); };
    const double gap = widthWith(kChipGap) <= kMaxRow ? kChipGap : kTightGap;
    const double row = widthWith(gap);
    const double height = kMoreStyle.lineHeight() + 6;
    if (l.pill) l.pill->frame = {row / 2 - pillWidth, (NotchModel::kChipRow - height) / 2, pillWidth, height};
    l.addRow(shown, -row / 2, gap, 0);
    l.bottom = shown > 0 ? NotchModel::kChipRow : 0;
    fit(l, row, top);
    return l;
}

// Fits the layout into the body's width and above its rim, leaving room for the whisper unless the shelf has stepped
// back.
void ShelfArea::fit(Layout& l, double row, double top) const {
    const bool whispers = model_.whisper().has_value() && !steppedBack();
    const double below = steppedBack() ? kBehindMouth : whispers ? kWhisperStyle.lineHeight() + kWhisperRoom : 0;
    const double room = std::clamp(model_.shapeHeight() - top - below, 1.0, std::max(l.bottom, 1.0));
    l.scale = std::min({1.0, kMaxRow / std::max(row, 1.0), room / std::max(l.bottom, 1.0)});
    l.drop = (room - l.scale * l.bottom) / 2;
    l.whisper = l.bottom > 0 ? room : 0;
}

void ShelfArea::update(const std::optional<Animation>& how, double top) {
    const double now = context_.now();
    // An invisible shelf moves at once; one that fades out stays where it is.
    const auto curve = presence_.at(now) > 0 ? how : std::nullopt;
    presence_.aim(wanted() ? 1 : 0, how, now);
    const Layout l = layout(top);
    arrange(l, curve);
    if (wanted()) {
        strength_.aim(steppedBack() ? kFaint : 1, curve, now);
        scale_.aim(l.scale, curve, now);
        drop_.aim(l.drop, curve, now);
        pill_.show(l.pill, curve, now);
        whisper(l, curve);
    }
    hover();
}

void ShelfArea::whisper(const Layout& l, const std::optional<Animation>& how) {
    const double now = context_.now();
    const bool seen = whisperShown_.at(now) > 0;
    const QString text = steppedBack() ? QString() : model_.whisper().value_or(QString());
    whisperShown_.aim(text.isEmpty() ? 0 : 1, how, now);
    if (text.isEmpty()) return;
    whisper_ = text;
    whisperTop_.aim(l.whisper, seen ? how : std::nullopt, now);
}

// Moves the chips to their new places; new ones fade in, and those no longer shown fade out in place.
void ShelfArea::arrange(const Layout& l, const std::optional<Animation>& how) {
    chips_.remove_if([](const Chip& chip) { return chip.gone(); });
    const QList<HeldThing> things = shownThings();
    for (Chip& chip : chips_) {
        const bool stays = std::any_of(things.begin(), things.end(),
                                       [&](const HeldThing& thing) { return sameThing(thing, chip.thing()); });
        if (!stays) chip.show(false, how);
    }
    for (qsizetype i = 0; i < things.size(); ++i) {
        const auto known = std::find_if(chips_.begin(), chips_.end(), [&](const Chip& chip) {
            return chip.shown() && sameThing(things[i], chip.thing());
        });
        if (known != chips_.end()) {
            known->setThing(things[i]);
            known->moveTo(l.chips[i], how);
        } else {
            chips_.emplace_back(chipsMade_++, things[i], l.chips[i], context_);
            chips_.back().show(true, how);
        }
    }
}

void ShelfArea::pointerMoved(const std::optional<QPointF>& point) {
    pointer_ = point ? std::optional(fitted(*point)) : std::nullopt;
    hover();
}

void ShelfArea::hover() {
    const Chip* hovered = pointer_ ? chipNear(*pointer_) : nullptr;
    for (Chip& chip : chips_) chip.setHover(&chip == hovered);
}

// The hit areas of neighbours overlap, so the nearest one counts.
Chip* ShelfArea::chipNear(const QPointF& place) {
    if (!reachable()) return nullptr;
    Chip* nearest = nullptr;
    const auto distance = [&place](const Chip& chip) { return QLineF(chip.inner().center(), place).length(); };
    for (Chip& chip : chips_) {
        if (!chip.shown() || !chip.outer().contains(place)) continue;
        if (!nearest || distance(chip) < distance(*nearest)) nearest = &chip;
    }
    return nearest;
}

QTransform ShelfArea::fitting() const {
    const double now = context_.now(), scale = scale_.at(now);
    return QTransform::fromScale(scale, scale) * QTransform::fromTranslate(0, drop_.at(now));
}

double ShelfArea::nextFrame() const {
    double next = std::numeric_limits<double>::infinity();
    if (presence_.target() == 0) return next;
    for (const Chip& chip : chips_) next = std::min(next, chip.nextFrame());
    return next;
}

Hit ShelfArea::hit(const QPointF& point, Hit below) {
    if (!reachable()) return below;
    const QPointF place = fitted(point);
    for (Chip& chip : chips_) {
        if (chip.shown() && chip.isOnRemove(place)) return chip.removeHit();
    }
    if (Chip* chip = chipNear(place)) return chip->hit(std::move(below));
    if (pill_.contains(place, context_.now())) {
        below.tap = [&model = model_] {
            model.withAnimation(Animation::spring(0.32, 0.85), [&] { model.shelfExpanded = !model.shelfExpanded; });
        };
    }
    return below;
}

void ShelfArea::compose(DisplayList& list) const {
    const double now = context_.now(), presence = presence_.at(now);
    if (presence <= 0) return;
    const double scale = kAppearScale + (1 - kAppearScale) * presence;
    list.with(QTransform::fromScale(scale, scale), presence, [&] {
        list.with(fitting(), strength_.at(now), [&] {
            for (const Chip& chip : chips_) chip.compose(list);
            pill_.compose(list, now);
        });
        composeWhisper(list);
    });
}

void ShelfArea::composeWhisper(DisplayList& list) const {
    const double now = context_.now(), line = kWhisperStyle.lineHeight();
    const double top = whisperTop_.at(now);
    list.with(QTransform(), whisperShown_.at(now), [&] {
        list.add(piece::whisper, QRectF(-160, top, 320, line), {top, whisper_}, [=, text = whisper_](Canvas& canvas) {
            canvas.text(text, {0, top + line / 2}, kWhisperStyle, accentOrange(0.9));
        });
    });
}
