#include "app/ScreenTest.h"

#include "app/Diagnostics.h"
#include "app/NotchPanel.h"
#include "creature/Numbers.h"

namespace {

constexpr double kStep = 1;  // seconds; well above the delay before the panel is placed

}  // namespace

ScreenTest::ScreenTest(NotchModel& model, MainLoop& loop, PanelPlacement& placement, NotchPanel& panel)
    : model_(model), loop_(loop), placement_(placement), panel_(panel) {}

void ScreenTest::start() {
    next_ = loop_.after(kStep, [this] { pretendChange(); });
}

void ScreenTest::pretendChange() {
    before_ = placement_.homeFrame();
    placement_.screensChanged();
    next_ = loop_.after(kStep, [this] { reportUnchanged(); });
}

void ScreenTest::reportUnchanged() {
    Diagnostics::write(QStringLiteral("screentest: before=%1 after=%2 same=%3 panel=%4 centerX=%5 top=%6")
                           .arg(formatRect(before_), formatRect(placement_.homeFrame()),
                                formatBool(before_ == placement_.homeFrame()), formatRect(panel_.shownFrame()),
                                formatNumber(model_.centerX), formatNumber(model_.screenTop)));
    placement_.forgetHome();
    placement_.screensChanged();
    next_ = loop_.after(kStep, [this] { reportRecovered(); });
}

void ScreenTest::reportRecovered() {
    Diagnostics::write(QStringLiteral("screentest: recovered=%1 panel=%2")
                           .arg(formatBool(placement_.homeFrame() == before_), formatRect(panel_.shownFrame())));
}
