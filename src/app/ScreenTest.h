#pragma once

#include "app/PanelPlacement.h"

class NotchPanel;

/// The screen self-test: reports in two lines on standard error whether the panel stays put when no screen has changed,
/// and whether it recovers from losing its home. Stops when the object is destroyed. Main thread only.
class ScreenTest {
 public:
    ScreenTest(NotchModel& model, MainLoop& loop, PanelPlacement& placement, NotchPanel& panel);

    /// Starts in one second.
    void start();

 private:
    void pretendChange();
    void reportUnchanged();
    void reportRecovered();

    NotchModel& model_;
    MainLoop& loop_;
    PanelPlacement& placement_;
    NotchPanel& panel_;
    QRectF before_;
    TimerHandle next_;
};
