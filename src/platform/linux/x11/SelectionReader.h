#pragma once

#include <map>
#include <optional>

#include "platform/MainLoop.h"
#include "platform/linux/x11/X11Connection.h"

/// Reads a selection that another program offers, without blocking. That program is untrusted: it may answer with
/// anything, never, or endlessly. Main thread only.
class SelectionReader {
 public:
    struct Data {
        xcb_atom_t type = XCB_ATOM_NONE;
        int format = 0;  ///< bits in a unit: 8, 16 or 32; units of 16 and 32 are in this machine's byte order
        QByteArray bytes;
    };
    using Done = std::function<void(std::optional<Data>)>;
    struct Limits {
        double stallTimeout;       ///< seconds in which the owner sends nothing
        double totalTimeout = 60;  ///< in all
        qsizetype maxBytes = 64 << 20;
        bool cut = false;  ///< truncate a longer answer to `maxBytes` instead of failing
    };

    /// `time` is when `selection` was acquired by its owner or dropped. `loop` must outlive this.
    SelectionReader(std::shared_ptr<X11Connection> connection, MainLoop& loop, const QByteArray& selection,
                    xcb_timestamp_t time);
    /// Cancels pending reads without calling `done`.
    ~SelectionReader();
    SelectionReader(const SelectionReader&) = delete;
    SelectionReader& operator=(const SelectionReader&) = delete;

    /// Requests the form `target` and calls `done` later, once; absent if the owner refuses or exceeds the limits.
    /// Large answers are fetched in small steps, from the loop. `done` may delete this.
    void read(xcb_atom_t target, const Limits& limits, Done done);

 private:
    struct Read {
        xcb_atom_t target;
        Limits limits;
        Done done;
        bool inPieces = false;
        uint32_t offset = 0;  // of the next slice in the property, in units of four bytes
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
    /// Keyed by the property of `window_` that receives the answer. Each read uses a new one, so that a late answer is
    /// not mistaken for another.
    Reads reads_;
    int count_ = 0;
};
