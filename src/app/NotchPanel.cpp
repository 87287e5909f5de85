#include "app/NotchPanel.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/linux/OutlineRegion.h"

namespace {

constexpr double kDragDistance = 12;

}  // namespace

NotchPanel::NotchPanel(NotchModel& model, RootView& root, DropIntake& drops, PanelWindow& window, Clock& clock,
                       MainLoop& loop)
    : model_(model), root_(root), drops_(drops), window_(window), clock_(clock), loop_(loop) {
    root_.onChange = [this] { contentChanged(); };
    window_.setListener(this);
    subscription_ = model_.objectDidChange.subscribe([this](const auto&) {
        if (reach() != inputReach_) updateInputRegion();
    });
}

NotchPanel::~NotchPanel() {
    root_.onChange = nullptr;
    window_.setListener(nullptr);
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

// A shelf with many rows is taller than the panel. The window grows before the shelf does, and shrinks only after it.
void NotchPanel::fitOverdraw() {
    double height = std::max(RootView::kPanelHeight, std::ceil(root_.depth()));
    if (root_.growing()) height = std::max(height, height_);
    if (height == height_) return;
    height_ = height;
    const int beside = RootView::kOverdraw;
    window_.setOverdraw({beside, 0, beside, int(height_ - RootView::kPanelHeight)});
}

NotchPanel::Reach NotchPanel::reach() const {
    if (model_.dragNear || model_.dropTargeted) return Reach::panel;
    return model_.hovering || model_.sliding || model_.slideX != 0.0 ? Reach::body : Reach::nothing;
}

void NotchPanel::contentChanged() {
    if (!visible_) return;
    fitOverdraw();
    scheduleFrame(clock_.uptime());
}

// At most one frame per refresh of the screen.
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
    inputReach_ = reach();
    QRegion input;
    if (inputReach_ == Reach::panel) input = QRect(0, 0, int(RootView::kPanelWidth), int(height_));
    if (inputReach_ == Reach::body) input = pixelsInside(root_.outline(), 1);
    if (input != inputRegion_) window_.setInputRegion(inputRegion_ = input);
}

void NotchPanel::pressed(PanelWindow::Button button, QPointF position, QPointF pointer) {
    if (button == PanelWindow::Button::right && onRightPress) onRightPress(pointer);
    if (button != PanelWindow::Button::left) return;
    cancelPress();
    press_ = Press{root_.hit(position), pointer};
    if (press_->hit.showPressed) press_->hit.showPressed(true);
}

void NotchPanel::dragged(QPointF pointer) {
    if (!press_) return;
    const QPointF offset = pointer - press_->pointer;
    if (!press_->dragged && std::hypot(offset.x(), offset.y()) < kDragDistance) return;
    if (std::holds_alternative<Hit::File>(press_->hit.drag)) {
        const auto file = std::get<Hit::File>(press_->hit.drag);
        cancelPress();
        return window_.dragOut(file.url, file.picture, QRectF({}, file.picture.deviceIndependentSize()).center());
    }
    const auto* slide = std::get_if<Hit::Slide>(&press_->hit.drag);
    if (!slide) return;
    press_->dragged = true;
    // Measured on the screen, since the panel moves with the pointer.
    slide->move(offset.x());
}

void NotchPanel::released(PanelWindow::Button button, QPointF pointer) {
    if (button != PanelWindow::Button::left || !press_) return;
    const Press press = *press_;
    cancelPress();
    const QPointF offset = pointer - press.pointer;
    const bool tapped = !press.dragged && std::max(std::abs(offset.x()), std::abs(offset.y())) < press.hit.tapReach;
    if (tapped && press.hit.tap) press.hit.tap();
}

void NotchPanel::cancelPress() {
    if (!press_) return;
    const Press press = *std::exchange(press_, std::nullopt);
    if (press.hit.showPressed) press.hit.showPressed(false);
    if (press.dragged) std::get<Hit::Slide>(press.hit.drag).end();
}

QPointF NotchPanel::inPanel(QPointF pointer) const {
    return {pointer.x() - frame_.left(), frame_.bottom() - pointer.y()};
}

void NotchPanel::pointerMoved(QPointF pointer) {
    const QPointF place = inPanel(pointer);
    const QRectF panel(0, 0, RootView::kPanelWidth, height_);
    root_.pointerMoved(panel.contains(place) ? std::optional(place) : std::nullopt);
}

QList<MenuItem> NotchPanel::menuAt(QPointF pointer) const {
    const Hit hit = root_.hit(inPanel(pointer));
    return hit.menu ? hit.menu() : QList<MenuItem>();
}

void NotchPanel::dropTargeted(bool targeted) {
    model_.withAnimation(Animation::spring(0.3, 0.85), [&] { model_.dropTargeted = targeted; });
}
