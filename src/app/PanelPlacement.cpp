#include "app/PanelPlacement.h"

#include "app/NotchPanel.h"

namespace {

constexpr double kSettleDelay = 0.35;  // seconds
constexpr double kFirstGaze = 220;     // points below the top, where the eyes look at first

}  // namespace

PanelPlacement::PanelPlacement(NotchModel& model, Screens& screens, MainLoop& loop)
    : model_(model), screens_(screens), loop_(loop) {}

bool PanelPlacement::measure() {
    const auto geometry = notchGeometry(screens_.screens());
    if (!geometry) return false;
    setGeometry(*geometry);
    model_.cursor = QPointF(model_.centerX, model_.screenTop - kFirstGaze);
    return true;
}

void PanelPlacement::setGeometry(const NotchGeometry& geometry) {
    model_.willChange();
    model_.notchSize = geometry.notch.size();
    model_.centerX = geometry.notch.center().x();
    model_.screenTop = geometry.top;
    homeFrame_ = geometry.panelFrame;
    notch_ = geometry.notch;
    place_ = geometry.place;
    model_.didChange();
}

void PanelPlacement::follow(NotchPanel& panel, BehaviourEngine& behaviour) {
    panel_ = &panel;
    behaviour_ = &behaviour;
    slideSubscription_ =
        model_.slideX.deliver(loop_, [this](double slideX) { panel_->setFrame(homeFrame_.translated(slideX, 0)); });
    screens_.onChange = [this] { screensChanged(); };
}

void PanelPlacement::screensChanged() {
    settled_ = loop_.after(kSettleDelay, [this] { placePanel(); });
}

void PanelPlacement::forgetHome() {
    homeFrame_ = QRectF(QPointF(0, 0), homeFrame_.size());
    model_.notchSize = {0, 0};
}

void PanelPlacement::placePanel() {
    const auto geometry = notchGeometry(screens_.screens());
    if (!geometry) return;
    const bool stays = geometry->panelFrame == homeFrame_ && geometry->place == place_;
    if (stays && geometry->notch.size() == model_.notchSize) return;
    setGeometry(*geometry);
    if (model_.slideX != 0.0) model_.slideX = 0;
    behaviour_->cancelSlideHome();
    panel_->show(homeFrame_);
    model_.cursor = QPointF(model_.centerX, model_.screenTop - kFirstGaze);
}
