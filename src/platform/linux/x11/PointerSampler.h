#pragma once

#include <QPointF>
#include <memory>

#include "platform/Lifetime.h"
#include "platform/MainLoop.h"
#include "platform/linux/x11/X11Connection.h"

/// Follows the pointer at display rate while it moves. A mouse reports up to a thousand motions a second, so only the
/// first one after a rest is listened to; then the pointer is asked for until it rests again. Main thread only.
class PointerSampler {
 public:
    struct Sample {
        QPointF pointer;          ///< in the model's screen coordinates
        uint16_t buttons = 0;     ///< those held, as XCB_BUTTON_MASK_1 and so on
        xcb_window_t window = 0;  ///< the root's child under the pointer; 0 for none
    };

    PointerSampler(std::shared_ptr<X11Connection> connection, MainLoop& loop);

    /// Calls `observer` for every change of place or buttons while the result lives. What rests costs nothing.
    [[nodiscard]] Subscription observe(std::function<void(const Sample&)> observer);
    /// Asks for the present state.
    Sample sample() const;
    /// Notices a pointer that another program has put elsewhere, of which no event tells. Waits for nothing.
    void look();

 private:
    void watchMotion();
    void beginSampling();
    void tick();
    Sample from(const xcb_query_pointer_reply_t& reply) const;
    bool reportChange();
    bool differs(const Sample& now) const;

    std::shared_ptr<X11Connection> connection_;
    MainLoop& loop_;
    Signal<const Sample&> observers_;
    Subscription events_;
    TimerHandle timer_;
    Sample last_;
    bool looking_ = false;
    int restingTicks_ = 0;
    int ticksToRest_ = 0;
    Lifetime lifetime_;
};
