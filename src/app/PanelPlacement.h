#pragma once

#include <QRectF>

#include "app/NotchGeometry.h"
#include "creature/BehaviourEngine.h"
#include "creature/NotchModel.h"

class NotchPanel;

/// Keeps the panel at the notch: puts it there at the start, moves it when the screens change, and lets it follow the
/// slide. Main thread only; the references must outlive it.
class PanelPlacement {
 public:
    PanelPlacement(NotchModel& model, Screens& screens, MainLoop& loop);

    /// Writes the notch's position and size to the model; false if there is no screen.
    bool measure();
    /// Starts moving `panel` with the slide and with screen changes.
    void follow(NotchPanel& panel, BehaviourEngine& behaviour);
    /// The screens may have changed: places the panel again shortly after, when the desktop has settled.
    void screensChanged();
    /// Discards the panel's home, so that the next screen change must find it again (for the self-test).
    void forgetHome();

    QRectF homeFrame() const { return homeFrame_; }
    QRectF notch() const { return notch_; }

 private:
    void placePanel();
    void setGeometry(const NotchGeometry& geometry);

    NotchModel& model_;
    Screens& screens_;
    MainLoop& loop_;
    NotchPanel* panel_ = nullptr;
    BehaviourEngine* behaviour_ = nullptr;
    QRectF homeFrame_;
    QRectF notch_;
    QRectF place_;  // of the screen on the desktop
    TimerHandle settled_;
    Subscription slideSubscription_;
};
