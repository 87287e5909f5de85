#pragma once

#include <optional>

#include "creature/NotchModel.h"
#include "platform/PanelWindow.h"
#include "shelf/DropIntake.h"
#include "views/DisplayList.h"
#include "views/RootView.h"

/// The panel that the creature lives in: draws the root view into the window, only when something has changed, and
/// passes presses to what lies under the pointer. It takes pointer input only while the creature is hovered, a drag is
/// near, or it has slid aside; otherwise clicks pass through. Main thread only; the references must outlive it.
class NotchPanel : private PanelWindow::Listener {
 public:
    NotchPanel(NotchModel& model, RootView& root, DropIntake& drops, PanelWindow& window, Clock& clock, MainLoop& loop);
    ~NotchPanel() override;

    void show(const QRectF& frame);
    void setFrame(const QRectF& frame);
    /// The panel's frame; its picture reaches lower while the shelf has more rows than fit.
    QRectF frame() const { return frame_; }
    /// The window's actual frame on the desktop.
    QRectF shownFrame() const { return window_.frame(); }

    /// The pointer moved to this place on the screen, with no button held in the panel.
    void pointerMoved(QPointF pointer);
    /// The context menu of what is at this place on the screen; empty if it has none of its own.
    QList<MenuItem> menuAt(QPointF pointer) const;

    /// The right button was pressed on the panel, at this place on the screen.
    std::function<void(QPointF pointer)> onRightPress;

    /// Cancels the current press, without a tap, when something else takes the pointer and its release will not come.
    void cancelPress();

 private:
    struct Press {
        Hit hit;
        QPointF pointer;  // on the screen
        bool dragged = false;
    };
    /// Where the panel takes pointer input.
    enum class Reach { nothing, body, panel };

    void exposed() override { drawFrame(true); }
    void pressed(PanelWindow::Button button, QPointF position, QPointF pointer) override;
    void dragged(QPointF pointer) override;
    void released(PanelWindow::Button button, QPointF pointer) override;
    void dropTargeted(bool targeted) override;
    bool acceptsDrop() override { return drops_.acceptsDrops(); }
    void dropped(std::shared_ptr<Drop> drop) override { drops_.handleDrop(std::move(drop)); }

    void contentChanged();
    void fitOverdraw();
    void scheduleFrame(double when);
    void drawFrame(bool all);
    Reach reach() const;
    void updateInputRegion();
    QPointF inPanel(QPointF pointer) const;

    NotchModel& model_;
    RootView& root_;
    DropIntake& drops_;
    PanelWindow& window_;
    Clock& clock_;
    MainLoop& loop_;

    PictureCaches caches_;
    DisplayList shown_;
    Reach inputReach_ = Reach::nothing;
    QRegion inputRegion_;
    QRectF frame_;
    double height_ = 0;  // of the picture; 0 until fitOverdraw()
    bool visible_ = false;
    std::optional<Press> press_;

    double lastFrame_ = 0;
    double frameDue_ = 0;
    TimerHandle frameTimer_;
    Subscription subscription_;
};
