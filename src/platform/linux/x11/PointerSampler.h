#pragma once

#include <QPointF>
#include <memory>

#include "platform/Lifetime.h"
#include "platform/MainLoop.h"
#include "platform/linux/x11/X11Connection.h"

/// Samples the pointer at the display's refresh rate while it moves. A mouse may report a thousand motions per second,
/// so this listens only for the first one, then polls until the pointer rests again. Main thread only.
class PointerSampler {
 public:
    struct Sample {
        QPointF pointer;          ///< in the model's screen coordinates
        uint16_t buttons = 0;     ///< those held, as XCB_BUTTON_MASK_1 and so on
        xcb_window_t window = 0;  ///< the root's child under the pointer; 0 for none
    };

    PointerSampler(std::shared_ptr<X11Connection> connection, MainLoop& loop);

    /// Calls `observer` for every change of position or buttons while the result lives. Costs nothing at rest.
    [[nodiscard]] Subscription observe(std::function<void(const Sample&)> observer);
    /// Queries the current state.
    Sample sample() const;
    /// Detects a pointer that another program has warped, which no event reports. Does not block.
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
