#pragma once

#include "app/PanelPlacement.h"

class NotchPanel;

/// The screen self-test: shows, as two lines on standard error, that an unchanged screen leaves the panel where it is
/// and that a panel which lost its place finds it again. Runs for as long as the object lives. Main thread.
class ScreenTest {
 public:
    ScreenTest(NotchModel& model, MainLoop& loop, PanelPlacement& placement, NotchPanel& panel);

    /// Begins one second from now.
    void start();

 private:
    void pretendChange();
    void reportUnchanged();
    void reportRecovered();

    NotchModel& m_;
    MainLoop& loop_;
    PanelPlacement& placement_;
    NotchPanel& panel_;
    QRectF before_;
    TimerHandle next_;
};
