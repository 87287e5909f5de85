#pragma once

#include <QRectF>
#include <functional>

#include "app/NotchGeometry.h"
#include "creature/BehaviourEngine.h"
#include "creature/NotchModel.h"

class NotchPanel;

/// Keeps the panel at the notch: puts it there at the start, moves it when the screens change, and lets it follow the
/// slide. Main thread only; the references must outlive it.
class PanelPlacement {
 public:
    PanelPlacement(NotchModel& model, Screens& screens, MainLoop& loop);

    /// Takes over the notch's place into the model; false when there is no screen.
    bool measure();
    /// Begins to move `panel` with the slide and with changes of the screens.
    void follow(NotchPanel& panel, BehaviourEngine& behaviour);
    /// The screens may have changed: a little later, when the desktop has settled, the panel is placed anew.
    void screensChanged();
    /// Pretends that the panel's home was never known, so that the next change of the screens must find it.
    void forgetHome();

    QRectF homeFrame() const { return homeFrame_; }
    QRectF notch() const { return notch_; }

 private:
    void placePanel();
    void take(const NotchGeometry& geometry);

    NotchModel& m_;
    Screens& screens_;
    MainLoop& loop_;
    NotchPanel* panel_ = nullptr;
    BehaviourEngine* behaviour_ = nullptr;
    QRectF homeFrame_;
    QRectF notch_;
    QRectF place_;  // of the screen in the desktop
    TimerHandle settled_;
    Subscription slideSubscription_;
};
