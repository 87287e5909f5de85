#pragma once

#include "platform/DragPasteboard.h"
#include "platform/linux/x11/SelectionReader.h"

/// Learns of drags from the owner of XdndSelection: whoever begins a drag takes it. Main thread only.
class X11DragPasteboard : public DragPasteboard {
 public:
    /// `ownWindow` tells whether a window is one of this program's, whose drags carry nothing for us. `loop` must live
    /// longer than this.
    X11DragPasteboard(std::shared_ptr<X11Connection> connection, MainLoop& loop,
                      std::function<bool(xcb_window_t)> ownWindow);

    int changeCount() const override { return changeCount_; }
    void canReadUsable(std::function<void(bool usable)> answer) override;

 private:
    void handle(const xcb_generic_event_t& event);
    void setOwner(xcb_window_t owner, xcb_timestamp_t since);
    /// During a drag Qt answers nobody but the drop target, and writes a list of types only when they are more than
    /// three, which those of a file's URL are not. So a source that tells nothing is taken to carry something; the
    /// drop target will see what it is.
    bool usableByTypeList();
    bool usable(const std::vector<xcb_atom_t>& targets);
    void finish(bool usable);

    std::shared_ptr<X11Connection> connection_;
    MainLoop& loop_;
    std::function<bool(xcb_window_t)> ownWindow_;
    xcb_atom_t selection_;
    int firstEvent_ = -1;
    int inputOpcode_ = -1;
    Subscription events_;
    int changeCount_ = 0;
    xcb_window_t owner_ = XCB_NONE;
    xcb_timestamp_t since_ = XCB_CURRENT_TIME;

    std::function<void(bool)> answer_;
    std::unique_ptr<SelectionReader> reader_;
    TimerHandle none_;  // the answer while nothing is being dragged
};
