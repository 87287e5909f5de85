#pragma once

#include <QHash>
#include <functional>
#include <memory>
#include <optional>

#include "platform/linux/x11/X11Connection.h"

struct xcb_input_raw_button_press_event_t;

/// Vertical scrolling on touchpads. Wheels are left to their buttons, since a mouse would report its every motion, too.
/// Main thread only.
class SmoothScroll {
 public:
    /// Watches for as long as it lives the touchpads that there are. `scrolled` is called with the points that the
    /// fingers have travelled, positive up.
    SmoothScroll(std::shared_ptr<X11Connection> connection, std::function<void(double points)> scrolled);
    ~SmoothScroll();
    SmoothScroll(const SmoothScroll&) = delete;
    SmoothScroll& operator=(const SmoothScroll&) = delete;

    /// Whether it watches this device, whose presses of wheel buttons then only repeat what it tells.
    bool watches(uint16_t device) const { return axes_.contains(device); }

 private:
    struct Axis {
        int number;
        double pointsPerUnit;
    };

    void findDevices();
    void select(uint16_t device, uint32_t events);

    std::shared_ptr<X11Connection> connection_;
    QHash<uint16_t, Axis> axes_;  // by device
    Subscription events_;
};

/// The points of one unit of a touchpad's scroll axis with this increment.
double touchpadPointsPerUnit(double increment);
/// The raw value of valuator `number` in a raw event; absent if the event does not report it.
std::optional<double> rawValuator(const xcb_input_raw_button_press_event_t& event, int number);
