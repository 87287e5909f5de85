#pragma once

#include <map>
#include <optional>

#include "platform/MainLoop.h"
#include "platform/linux/x11/X11Connection.h"

/// Asks another program for what it offers as a selection, and never waits for it. The other program is not trusted:
/// it may answer with anything, never, or without end. Main thread only.
class SelectionReader {
 public:
    struct Data {
        xcb_atom_t type = XCB_ATOM_NONE;
        int format = 0;  ///< bits in a unit: 8, 16 or 32; units of 16 and 32 are in this machine's byte order
        QByteArray bytes;
    };
    using Done = std::function<void(std::optional<Data>)>;
    struct Limits {
        double patience;         ///< seconds in which the owner sends nothing
        double maxSeconds = 60;  ///< in all
        qsizetype maxBytes = 64 << 20;
        bool cut = false;  ///< whether the first `maxBytes` of a longer answer are wanted
    };

    /// `time` is when `selection` came to its owner or was dropped. `loop` must live longer than this.
    SelectionReader(std::shared_ptr<X11Connection> connection, MainLoop& loop, const QByteArray& selection,
                    xcb_timestamp_t time);
    /// Answers that are still out do not come.
    ~SelectionReader();
    SelectionReader(const SelectionReader&) = delete;
    SelectionReader& operator=(const SelectionReader&) = delete;

    /// Asks for the form `target` and calls `done` later, once: with nothing when the owner refuses or goes beyond the
    /// limits. A large answer is fetched in many small steps of the loop. `done` may delete this.
    void read(xcb_atom_t target, const Limits& limits, Done done);

 private:
    struct Read {
        xcb_atom_t target;
        Limits limits;
        Done done;
        bool inPieces = false;
        uint32_t offset = 0;  // of what is still to be taken of the property, in units of four bytes
        Data data;
        TimerHandle stall, end, next;
    };
    using Reads = std::map<xcb_atom_t, Read>;

    void handle(const xcb_generic_event_t& event);
    void answered(const xcb_selection_notify_event_t& notify);
    /// Takes a slice of what the owner has written into the read's property.
    void take(xcb_atom_t property);
    void sliceTaken(Reads::iterator read, const xcb_get_property_reply_t& slice);
    void remove(xcb_atom_t property);
    void awaitMore(Reads::iterator read);
    void finish(xcb_atom_t property, std::optional<Data> data);

    std::shared_ptr<X11Connection> connection_;
    MainLoop& loop_;
    xcb_atom_t selection_;
    xcb_timestamp_t time_;
    xcb_window_t window_;
    Subscription events_;
    /// By the property of `window_` that the answer goes to. Each read has its own, so that an answer that comes too
    /// late is not taken for another.
    Reads reads_;
    int count_ = 0;
};
