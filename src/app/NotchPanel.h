#pragma once

#include <optional>

#include "creature/NotchModel.h"
#include "platform/PanelWindow.h"
#include "shelf/DropIntake.h"
#include "views/DisplayList.h"
#include "views/RootView.h"

/// The panel that the creature lives in: shows the root view's pictures in the window, one frame when something changed
/// and none else, and lets what lies under the pointer answer to presses. It takes the pointer exactly while the
/// creature attends, is aimed at with a drop, or is off its place. Main thread only; the references must outlive it.
class NotchPanel : private PanelWindow::Listener {
 public:
    NotchPanel(NotchModel& model, RootView& root, DropIntake& drops, PanelWindow& window, Clock& clock, MainLoop& loop);
    ~NotchPanel() override;

    void show(const QRectF& frame);
    void setFrame(const QRectF& frame);
    /// Where the panel is; its picture hangs lower while the shelf has more rows than fit.
    QRectF frame() const { return frame_; }
    /// Where the desktop shows it.
    QRectF shownFrame() const { return window_.frame(); }

    /// The pointer is here on the screen now, with no button held in the panel.
    void pointerMoved(QPointF pointer);
    /// The menu of what is at this place of the screen; empty where nothing has one of its own.
    QList<MenuItem> menuAt(QPointF pointer) const;

    /// The right button went down on the panel, here on the screen.
    std::function<void(QPointF pointer)> onRightPress;

    /// Ends a press that is under way, without a tap: its release will not come, because something else takes the
    /// pointer.
    void letGo();

 private:
    struct Press {
        Hit hit;
        QPointF pointer;  // on the screen
        bool dragged = false;
    };
    /// Where the panel takes the pointer.
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
    double height_ = 0;  // of the picture; 0 until it has been fitted
    bool visible_ = false;
    std::optional<Press> press_;

    double lastFrame_ = 0;
    double frameDue_ = 0;
    TimerHandle frameTimer_;
    Subscription subscription_;
};
