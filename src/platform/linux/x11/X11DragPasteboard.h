#pragma once

#include "platform/DragPasteboard.h"
#include "platform/linux/x11/SelectionReader.h"

/// Detects drags by the owner of XdndSelection, which every source acquires when it starts a drag. Main thread only.
class X11DragPasteboard : public DragPasteboard {
 public:
    /// `isOwnWindow` tells whether a window is one of this program's, whose drags carry nothing for us. `loop` must
    /// live longer than this.
    X11DragPasteboard(std::shared_ptr<X11Connection> connection, MainLoop& loop,
                      std::function<bool(xcb_window_t)> isOwnWindow);

    int changeCount() const override { return changeCount_; }
    void canReadUsable(std::function<void(bool usable)> answer) override;

 private:
    void handle(const xcb_generic_event_t& event);
    void setOwner(xcb_window_t owner, xcb_timestamp_t since);
    /// During a drag Qt answers only the drop target, and publishes a type list only for more than three types, which a
    /// file's URL does not have. So a silent source counts as usable; the drop target learns its real types.
    bool isUsableByTypeList();
    bool isUsable(const std::vector<xcb_atom_t>& targets);
    void finish(bool usable);

    std::shared_ptr<X11Connection> connection_;
    MainLoop& loop_;
    std::function<bool(xcb_window_t)> isOwnWindow_;
    xcb_atom_t selection_;
    int firstEvent_ = -1;
    int inputOpcode_ = -1;
    Subscription events_;
    int changeCount_ = 0;
    xcb_window_t owner_ = XCB_NONE;
    xcb_timestamp_t since_ = XCB_CURRENT_TIME;

    std::function<void(bool)> answer_;
    std::unique_ptr<SelectionReader> reader_;
    TimerHandle noDragAnswer_;  // pending answer while nothing is being dragged
};
