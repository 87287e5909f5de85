#pragma once

#include <QHash>
#include <functional>
#include <memory>
#include <optional>

#include "platform/linux/x11/X11Connection.h"

struct xcb_input_raw_button_press_event_t;

/// Vertical scrolling in finer steps than a wheel's, from all devices that offer it. Main thread only.
class SmoothScroll {
 public:
    /// Watches for as long as it lives. `scrolled` is called with points, positive up: ten for a step of a wheel, what
    /// the fingers travel on a touchpad.
    SmoothScroll(std::shared_ptr<X11Connection> connection, std::function<void(double points)> scrolled);
    ~SmoothScroll();
    SmoothScroll(const SmoothScroll&) = delete;
    SmoothScroll& operator=(const SmoothScroll&) = delete;

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

/// The raw value of valuator `number` in a raw event; absent if the event does not report it.
std::optional<double> rawValuator(const xcb_input_raw_button_press_event_t& event, int number);
