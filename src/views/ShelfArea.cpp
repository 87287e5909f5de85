#include "views/ShelfArea.h"

#include <QLineF>
#include <algorithm>
#include <limits>
#include <utility>

#include "views/Colors.h"
#include "views/PieceIds.h"
#include "views/Shapes.h"

namespace {

constexpr double kRowHeight = 56;
constexpr double kChipGap = 6;
constexpr double kTightGap = 2;  // between many chips
constexpr double kWidest = 304;  // that a row may be inside the open body
constexpr double kPillGap = 2;   // above the pill that folds
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

double rowWidth(int chips, double gap) {
    return chips * Chip::width + std::max(chips - 1, 0) * gap;
}

bool sameThing(const HeldThing& a, const HeldThing& b) {
    const auto *timerA = std::get_if<HeldTimer>(&a), *timerB = std::get_if<HeldTimer>(&b);
    return timerA && timerB ? timerA->id == timerB->id : a == b;
}

}  // namespace

/// The places of everything, relative to the shelf's top, before fading and scaling.
struct ShelfArea::Layout {
    QList<QPointF> chips;  ///< their middles
    QString pill;          ///< empty: none
    QRectF pillFrame;
    TextStyle pillStyle{0};
    double pillText = 0, pillFill = 0;  ///< opacities
    double bottom = 0;                  ///< where the whisper begins
    double scale = 1;                   ///< that makes the widest row fit

    /// A row of chips beginning at `left`, `row` rows down.
    void addRow(int count, double left, double gap, int row) {
        for (int i = 0; i < count; ++i)
            chips.append({left + (Chip::width + gap) * i + Chip::width / 2, kRowHeight * (row + 0.5)});
    }
};

ShelfArea::ShelfArea(NotchModel& model, const ChipPorts& ports, Clock& clock, MainLoop& loop,
                     std::function<void()> changed)
    : m_(model), ports_(ports), clock_(clock), loop_(loop), changed_(std::move(changed)) {}

bool ShelfArea::wanted() const {
    return (m_.hovering && m_.hasHeld()) || m_.dropTargeted || m_.dragNear;
}

QList<HeldThing> ShelfArea::shownThings() const {
    if (m_.screenLocked) return {};
    const qsizetype files = m_.shelfExpanded ? m_.items->size() : kFoldedFiles;
    const qsizetype bites = m_.shelfExpanded ? m_.bites->size() : kFoldedBites;
    QList<HeldThing> things;
    for (const HeldTimer& timer : m_.timers.get()) things.append(timer);
    for (const QUrl& file : m_.items->mid(0, files)) things.append(file);
    for (const Bite& bite : m_.bites->mid(0, bites)) things.append(bite);
    return things;
}

ShelfArea::Layout ShelfArea::layout() const {
    Layout l;
    const int shown = int(shownThings().size());
    if (m_.shelfExpanded) {
        const int rows = (shown + kChipsPerRow - 1) / kChipsPerRow;
        for (int row = 0; row < rows; ++row) {
            const int count = std::min(kChipsPerRow, shown - row * kChipsPerRow);
            l.addRow(count, -rowWidth(count, kChipGap) / 2, kChipGap, row);
        }
        l.pill = QStringLiteral("show less");
        l.pillStyle = kLessStyle;
        l.pillText = 0.55;
        l.pillFill = 0.1;
        const double width = Canvas::textWidth(l.pill, kLessStyle) + 16;
        l.pillFrame = {-width / 2, rows * kRowHeight + kPillGap, width, lineHeight(kLessStyle) + 5};
        l.bottom = l.pillFrame.bottom();
        return l;
    }
    double pillWidth = 0;
    if (m_.heldCount() > shown) {
        l.pill = u'+' + QString::number(m_.heldCount() - shown);
        l.pillStyle = kMoreStyle;
        l.pillText = 0.75;
        l.pillFill = 0.12;
        pillWidth = Canvas::textWidth(l.pill, kMoreStyle) + 14;
    }
    const auto widthWith = [&](double gap) { return rowWidth(shown, gap) + (pillWidth > 0 ? gap + pillWidth : 0); };
    const double gap = widthWith(kChipGap) <= kWidest ? kChipGap : kTightGap;
    const double row = widthWith(gap);
    const double height = lineHeight(kMoreStyle) + 6;
    if (pillWidth > 0) l.pillFrame = {row / 2 - pillWidth, (kRowHeight - height) / 2, pillWidth, height};
    l.addRow(shown, -row / 2, gap, 0);
    l.scale = std::min(1.0, kWidest / std::max(row, 1.0));
    l.bottom = shown > 0 ? kRowHeight : 0;
    return l;
}

void ShelfArea::update(const std::optional<Animation>& how) {
    presence_.aim(wanted() ? 1 : 0, how, clock_.uptime());
    arrange(how);
    hover();
}

// Chips go to the places of their things; what is new fades in, what is no longer shown fades out where it is.
void ShelfArea::arrange(const std::optional<Animation>& how) {
    chips_.remove_if([this](const Chip& chip) { return chip.gone() && &chip != pressed_; });
    const QList<HeldThing> things = shownThings();
    const Layout l = layout();
    scale_.aim(l.scale, how, clock_.uptime());
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
            chips_.emplace_back(chipsMade_++, things[i], l.chips[i], ports_, clock_, loop_, changed_);
            chips_.back().show(true, how);
        }
    }
}

void ShelfArea::pointerMoved(const std::optional<QPointF>& point, double top) {
    pointer_ = point ? std::optional(onShelf(*point, top)) : std::nullopt;
    hover();
}

// Neighbours share the ground between them; the nearer one has the pointer.
void ShelfArea::hover() {
    const Chip* hovered = nullptr;
    const auto distance = [this](const Chip& chip) { return QLineF(chip.inner().center(), *pointer_).length(); };
    for (const Chip& chip : chips_) {
        if (!pointer_ || !reachable() || !chip.shown() || !chip.outer().contains(*pointer_)) continue;
        if (!hovered || distance(chip) < distance(*hovered)) hovered = &chip;
    }
    for (Chip& chip : chips_) chip.setHover(&chip == hovered);
}

QTransform ShelfArea::fitting() const {
    const double scale = scale_.at(clock_.uptime());
    return QTransform::fromTranslate(0, -kRowHeight / 2) * QTransform::fromScale(scale, scale) *
           QTransform::fromTranslate(0, kRowHeight / 2);
}

QPointF ShelfArea::onShelf(const QPointF& point, double top) const {
    return fitting().inverted().map(point - QPointF(0, top));
}

double ShelfArea::nextFrame() const {
    const double now = clock_.uptime();
    if (presence_.moving(now) || scale_.moving(now)) return now;
    double next = std::numeric_limits<double>::infinity();
    if (presence_.target() == 0) return next;
    for (const Chip& chip : chips_) next = std::min(next, chip.nextFrame());
    return next;
}

Chip* ShelfArea::chipAt(const QPointF& point, double top) {
    if (!reachable()) return nullptr;
    const auto found = std::find_if(chips_.begin(), chips_.end(), [&](const Chip& chip) {
        return chip.shown() && chip.inner().contains(onShelf(point, top));
    });
    return found == chips_.end() ? nullptr : &*found;
}

bool ShelfArea::tap(const QPointF& point, double top) {
    const Chip* chip = std::exchange(pressed_, nullptr);
    // A countdown has nothing to be used for: a tap on it is one on the creature.
    if (chip && !std::holds_alternative<HeldTimer>(chip->thing())) {
        if (chip->shown()) ports_.use(HeldThing(chip->thing()));
        return true;
    }
    if (!reachable()) return false;
    const Layout l = layout();
    if (l.pill.isEmpty() || !l.pillFrame.contains(onShelf(point, top))) return false;
    m_.withAnimation(Animation::spring(0.32, 0.85), [this] { m_.shelfExpanded = !m_.shelfExpanded; });
    return true;
}

bool ShelfArea::press(const QPointF& point, double top) {
    pressed_ = chipAt(point, top);
    if (!reachable()) return false;
    const auto found = std::find_if(chips_.begin(), chips_.end(), [&](const Chip& chip) {
        return chip.shown() && chip.removeHit(onShelf(point, top));
    });
    if (found == chips_.end()) return false;
    pressed_ = &*found;
    pressed_->pressRemove();
    return true;
}

void ShelfArea::release(const QPointF& way) {
    Chip* chip = std::exchange(pressed_, nullptr);
    if (chip && chip->releaseRemove(way) && chip->shown()) ports_.remove(HeldThing(chip->thing()));
}

void ShelfArea::compose(DisplayList& list, double top) const {
    const double presence = presence_.at(clock_.uptime());
    if (presence <= 0) return;
    const double scale = kAppearScale + (1 - kAppearScale) * presence;
    list.with(QTransform::fromScale(scale, scale) * QTransform::fromTranslate(0, top), presence, [&] {
        list.with(fitting(), 1, [&] {
            for (const Chip& chip : chips_) chip.compose(list);
            composePill(list);
        });
        composeWhisper(list);
    });
}

void ShelfArea::composePill(DisplayList& list) const {
    const Layout l = layout();
    if (l.pill.isEmpty()) return;
    list.add(piece::pill, l.pillFrame, {l.pillFrame, l.pill}, [l](Canvas& canvas) {
        canvas.fill(continuousCapsule(l.pillFrame), white(l.pillFill));
        canvas.text(l.pill, l.pillFrame.center(), l.pillStyle, white(l.pillText));
    });
}

void ShelfArea::composeWhisper(DisplayList& list) const {
    const QString whisper = m_.whisper().value_or(QString());
    if (whisper.isEmpty()) return;
    const double line = lineHeight(kWhisperStyle), top = layout().bottom;
    list.add(piece::whisper, QRectF(-160, top, 320, line), {top, whisper}, [=](Canvas& canvas) {
        canvas.text(whisper, {0, top + line / 2}, kWhisperStyle, accentOrange(0.9));
    });
}
