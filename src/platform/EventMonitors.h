#pragma once

#include <QPointF>
#include <functional>

/// Observes input anywhere on the desktop, without keeping it from its receiver. Main thread only. Points are screen
/// points with y growing upwards.
///
/// Motion is sampled at the display's refresh rate; nothing runs while the pointer rests.
class EventMonitors {
 public:
    virtual ~EventMonitors() = default;

    /// Starts watching. Set the callbacks before.
    virtual void start() = 0;

    /// Where the pointer is now.
    virtual QPointF pointerLocation() const = 0;
    /// Detects, a moment later, a pointer that a program has warped, which no input event reports. Costs one sample:
    /// call it when the program is awake anyway.
    virtual void lookForPointer() {}
    /// Whether onScroll is to be called. Off at first.
    virtual void wantScroll(bool /*wanted*/) {}
    /// Whether Caps Lock is on now.
    virtual bool capsLock() const = 0;

    std::function<void(QPointF pointer)> onMouseMoved;        ///< no button held
    std::function<void(QPointF pointer)> onLeftMouseDragged;  ///< the left button held
    std::function<void(QPointF pointer)> onLeftMouseUp;
    /// A press at `pointer` that went to another program. Reported when the button is released, since a menu cannot
    /// open while that program grabs the pointer.
    std::function<void(QPointF pointer)> onRightMouseDown;
    /// Any button was pressed on another program's window or on the desktop.
    std::function<void()> onPressElsewhere;
    /// Scrolling in points, positive up (away from the user): ten for a step of a wheel, what the fingers travel on a
    /// touchpad. Only while it is wanted.
    std::function<void(QPointF pointer, double points)> onScroll;
    std::function<void(bool capsLock)> onCapsLockChanged;
};
