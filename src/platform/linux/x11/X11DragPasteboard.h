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

    /// Grows at the end of a drag, too, where its source gives the selection up.
    int changeCount() const override { return changeCount_; }
    void canReadUsable(std::function<void(bool usable)> answer) override;

 private:
    void handle(const xcb_generic_event_t& event);
    /// Goes by the owner's list of types, or by trying where it has none.
    void askWithoutTargets();
    /// Answers whether the owner gives any of `targets`.
    void tryEach(std::vector<QByteArray> targets);
    bool usable(const std::vector<xcb_atom_t>& targets);
    void finish(bool usable);

    std::shared_ptr<X11Connection> connection_;
    MainLoop& loop_;
    std::function<bool(xcb_window_t)> ownWindow_;
    xcb_atom_t selection_;
    int firstEvent_ = -1;
    Observation events_;
    int changeCount_ = 0;
    xcb_window_t owner_ = XCB_NONE;
    xcb_timestamp_t since_ = XCB_CURRENT_TIME;

    std::function<void(bool)> answer_;
    std::unique_ptr<SelectionReader> reader_;
    TimerHandle deadline_;
};
