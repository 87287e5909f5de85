#include "app/NotchPanel.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/linux/OutlineRegion.h"
#include "views/FilePicture.h"

namespace {

constexpr double kDragDistance = 12;
constexpr QPointF kFarAway(1000, 1000);  // a press that ends here was not meant

}  // namespace

NotchPanel::NotchPanel(NotchModel& model, RootView& root, PanelWindow& window, Clock& clock, MainLoop& loop)
    : m_(model), root_(root), window_(window), clock_(clock), loop_(loop) {
    root_.onChange = [this] { contentChanged(); };
    window_.onExpose = [this] { drawFrame(true); };
    window_.onPress = [this](auto button, QPointF position, QPointF pointer) { pressed(button, position, pointer); };
    window_.onDrag = [this](QPointF pointer) { draggedTo(pointer); };
    window_.onRelease = [this](auto button, QPointF pointer) { released(button, pointer); };
    window_.onDropTargeted = [this](bool targeted) { dropTargeted(targeted); };
}

NotchPanel::~NotchPanel() {
    root_.onChange = nullptr;
    window_.onExpose = nullptr;
    window_.onPress = nullptr;
    window_.onDrag = nullptr;
    window_.onRelease = nullptr;
    window_.onDropTargeted = nullptr;
}

void NotchPanel::show(const QRectF& frame) {
    setFrame(frame);
    visible_ = true;
    window_.setOutline(root_.outline());
    updateInputRegion();
    window_.orderFrontRegardless();
    drawFrame(true);
}

void NotchPanel::setFrame(const QRectF& frame) {
    frame_ = frame;
    fitOverdraw();
    window_.setFrame(frame_);
}

// A shelf with many rows hangs lower than the panel. The window becomes longer before the shelf grows, and shorter when
// it has shrunk.
void NotchPanel::fitOverdraw() {
    double height = std::max(RootView::kPanelHeight, std::ceil(root_.depth()));
    if (root_.growing()) height = std::max(height, height_);
    if (height == height_) return;
    height_ = height;
    const int beside = RootView::kOverdraw;
    window_.setOverdraw({beside, 0, beside, int(height_ - RootView::kPanelHeight)});
}

void NotchPanel::updateMousePassThrough() {
    setIgnoresMouseEvents(!m_.hovering && !m_.dragNear && !m_.dropTargeted && !m_.sliding && m_.slideX == 0.0);
}

void NotchPanel::setIgnoresMouseEvents(bool ignores) {
    ignoresMouse_ = ignores;
    updateInputRegion();
}

void NotchPanel::contentChanged() {
    if (!visible_) return;
    fitOverdraw();
    scheduleFrame(clock_.uptime());
}

// Frames come no faster than the screen shows them.
void NotchPanel::scheduleFrame(double when) {
    const double due = std::max(when, lastFrame_ + 1 / window_.refreshRate());
    if (frameTimer_ && frameDue_ <= due) return;
    frameDue_ = due;
    frameTimer_ = loop_.after(std::max(due - clock_.uptime(), 0.0), [this] { drawFrame(false); });
}

void NotchPanel::drawFrame(bool all) {
    if (!visible_) return;
    frameTimer_.cancel();
    lastFrame_ = clock_.uptime();
    fitOverdraw();
    DisplayList next;
    root_.compose(next);
    const QRegion picture =
        QRect(0, 0, int(RootView::kPanelWidth), int(height_)).adjusted(-RootView::kOverdraw, 0, RootView::kOverdraw, 0);
    const QRegion damage = all ? picture : shown_.changesTo(next) & picture;
    if (!damage.isEmpty()) {
        window_.setOutline(root_.outline());
        window_.paint(damage, [&](QPainter& painter) {
            Canvas canvas(painter, caches_, window_.devicePixelRatio());
            next.paint(canvas, damage);
        });
        updateInputRegion();
    }
    shown_ = std::move(next);
    const double again = root_.nextFrame();
    if (std::isfinite(again)) scheduleFrame(again);
}

void NotchPanel::updateInputRegion() {
    QRegion input;
    if (!ignoresMouse_ && (m_.dragNear || m_.dropTargeted))
        input = QRect(0, 0, int(RootView::kPanelWidth), int(height_));
    else if (!ignoresMouse_)
        input = pixelsInside(root_.outline(), 1);
    if (input != inputRegion_) window_.setInputRegion(inputRegion_ = input);
}

void NotchPanel::pressed(PanelWindow::Button button, QPointF position, QPointF pointer) {
    if (button == PanelWindow::Button::right && onRightPress) onRightPress(pointer);
    if (button == PanelWindow::Button::left) press_ = Press{position, pointer, false, root_.press(position)};
}

void NotchPanel::draggedTo(QPointF pointer) {
    if (!press_ || press_->remove) return;
    const QPointF way = pointer - press_->pointer;
    if (!press_->dragged && std::hypot(way.x(), way.y()) < kDragDistance) return;
    if (!press_->dragged) {
        const Chip* chip = root_.pressedChip();
        if (chip && std::holds_alternative<QUrl>(chip->thing())) return dragOut(*chip);
    }
    press_->dragged = true;
    // Measured on the screen, since the panel moves along under the pointer.
    root_.slide(way.x());
}

void NotchPanel::dragOut(const Chip& chip) {
    press_.reset();
    const double middle = FilePicture::side / 2 + FilePicture::margin;
    window_.dragOut(std::get<QUrl>(chip.thing()), chip.picture(), {middle, middle});
}

void NotchPanel::released(PanelWindow::Button button, QPointF pointer) {
    if (button != PanelWindow::Button::left || !press_) return;
    const Press press = *std::exchange(press_, std::nullopt);
    if (press.remove)
        root_.release(pointer - press.pointer);
    else if (press.dragged)
        root_.slideEnded();
    else
        root_.tap(press.position);
}

void NotchPanel::letGo() {
    if (press_ && press_->dragged) root_.slideEnded();
    if (press_ && press_->remove) root_.release(kFarAway);
    press_.reset();
}

QPointF NotchPanel::inPanel(QPointF pointer) const {
    return {pointer.x() - frame_.left(), frame_.bottom() - pointer.y()};
}

void NotchPanel::pointerMoved(QPointF pointer) {
    const QPointF place = inPanel(pointer);
    const QRectF panel(0, 0, RootView::kPanelWidth, height_);
    root_.pointerMoved(panel.contains(place) ? std::optional(place) : std::nullopt);
}

const Chip* NotchPanel::chipAt(QPointF pointer) const {
    return root_.chipAt(inPanel(pointer));
}

void NotchPanel::dropTargeted(bool targeted) {
    // The weather takes no drops.
    const bool taken = targeted && m_.toy == Toy::critter;
    m_.withAnimation(Animation::spring(0.3, 0.85), [&] { m_.dropTargeted = taken; });
    updateMousePassThrough();
}
