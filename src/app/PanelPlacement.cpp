#include "app/PanelPlacement.h"

#include "app/NotchPanel.h"

namespace {

constexpr double kSettle = 0.35;  // seconds
// The eyes start looking down into the screen.
constexpr double kFirstGaze = 220;

}  // namespace

PanelPlacement::PanelPlacement(NotchModel& model, Screens& screens, MainLoop& loop)
    : m_(model), screens_(screens), loop_(loop) {}

bool PanelPlacement::measure() {
    const auto geometry = notchGeometry(screens_.screens());
    if (!geometry) return false;
    take(*geometry);
    m_.cursor = QPointF(m_.centerX, m_.screenTop - kFirstGaze);
    return true;
}

void PanelPlacement::take(const NotchGeometry& geometry) {
    m_.willChange();
    m_.notchSize = geometry.notch.size();
    m_.centerX = geometry.notch.center().x();
    m_.screenTop = geometry.top;
    homeFrame_ = geometry.panelFrame;
    notch_ = geometry.notch;
    place_ = geometry.place;
    m_.didChange();
}

void PanelPlacement::follow(NotchPanel& panel, BehaviourEngine& behaviour) {
    panel_ = &panel;
    behaviour_ = &behaviour;
    slideSubscription_ =
        m_.slideX.deliver(loop_, [this](double slideX) { panel_->setFrame(homeFrame_.translated(slideX, 0)); });
    screens_.onChange = [this] { screensChanged(); };
}

void PanelPlacement::screensChanged() {
    settled_ = loop_.after(kSettle, [this] { placePanel(); });
}

void PanelPlacement::forgetHome() {
    homeFrame_ = QRectF(QPointF(0, 0), homeFrame_.size());
    m_.notchSize = {0, 0};
}

void PanelPlacement::placePanel() {
    const auto geometry = notchGeometry(screens_.screens());
    if (!geometry) return;
    const bool stays = geometry->panelFrame == homeFrame_ && geometry->place == place_;
    if (stays && geometry->notch.size() == m_.notchSize) return;
    take(*geometry);
    if (m_.slideX != 0.0) m_.slideX = 0;
    behaviour_->cancelSlideHome();
    panel_->show(homeFrame_);
    m_.cursor = QPointF(m_.centerX, m_.screenTop - kFirstGaze);
}
