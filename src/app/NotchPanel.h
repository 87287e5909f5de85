#pragma once

#include <optional>

#include "creature/NotchModel.h"
#include "platform/PanelWindow.h"
#include "views/DisplayList.h"
#include "views/RootView.h"

/// The panel that the creature lives in: shows the root view's pictures in the window, one frame when something changed
/// and none else, and turns presses into taps and slides. Main thread only; the references must outlive it.
class NotchPanel {
 public:
    NotchPanel(NotchModel& model, RootView& root, PanelWindow& window, Clock& clock, MainLoop& loop);
    ~NotchPanel();

    void show(const QRectF& frame);
    void setFrame(const QRectF& frame);
    /// Where the panel is; its picture hangs lower while the shelf has more rows than fit.
    QRectF frame() const { return frame_; }
    /// Where the desktop shows it.
    QRectF shownFrame() const { return window_.frame(); }

    /// Lets the panel take the pointer exactly while the creature attends, is aimed at with a drop, or is off its
    /// place.
    void updateMousePassThrough();
    /// Takes or leaves the pointer until the next updateMousePassThrough().
    void setIgnoresMouseEvents(bool ignores);
    /// The pointer is here on the screen now, with no button held in the panel.
    void pointerMoved(QPointF pointer);
    /// The chip under a place of the screen; null for none. It lives until the model changes.
    const Chip* chipAt(QPointF pointer) const;

    /// The right button went down on the panel, here on the screen.
    std::function<void(QPointF pointer)> onRightPress;

    /// Ends a press that is under way, without a tap: its release will not come, because something else takes the
    /// pointer.
    void letGo();

 private:
    struct Press {
        QPointF position;  // in the panel
        QPointF pointer;   // on the screen
        bool dragged = false;
        bool remove = false;  // on a chip's remove button
    };

    void contentChanged();
    void fitOverdraw();
    void scheduleFrame(double when);
    void drawFrame(bool all);
    void updateInputRegion();
    void pressed(PanelWindow::Button button, QPointF position, QPointF pointer);
    void draggedTo(QPointF pointer);
    void released(PanelWindow::Button button, QPointF pointer);
    void dragOut(const Chip& chip);
    QPointF inPanel(QPointF pointer) const;
    void dropTargeted(bool targeted);

    NotchModel& m_;
    RootView& root_;
    PanelWindow& window_;
    Clock& clock_;
    MainLoop& loop_;

    PictureCaches caches_;
    DisplayList shown_;
    QRegion inputRegion_;
    QRectF frame_;
    double height_ = 0;  // of the picture; 0 until it has been fitted
    bool visible_ = false;
    bool ignoresMouse_ = true;
    std::optional<Press> press_;

    double lastFrame_ = 0;
    double frameDue_ = 0;
    TimerHandle frameTimer_;
};
