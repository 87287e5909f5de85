#pragma once

#include <QPointF>
#include <functional>

/// Input as it happens anywhere on the desktop, whoever it is meant for; nothing is held back from its receiver. Main
/// thread only. Points are screen points with y growing upwards.
///
/// Moves are sampled at display rate while the pointer moves, and nothing runs while it rests.
class EventMonitors {
 public:
    virtual ~EventMonitors() = default;

    /// Begins to watch. Callbacks that are to be used must have been set.
    virtual void start() = 0;

    /// Where the pointer is now.
    virtual QPointF pointerLocation() const = 0;
    /// Notices, a moment later, a pointer that a program has put elsewhere: of that no input tells. For whoever is
    /// awake anyway; costs as much as one sample.
    virtual void lookForPointer() {}
    /// Whether Caps Lock is on now.
    virtual bool capsLock() const = 0;

    std::function<void(QPointF pointer)> onMouseMoved;        ///< no button held
    std::function<void(QPointF pointer)> onLeftMouseDragged;  ///< the left button held
    std::function<void(QPointF pointer)> onLeftMouseUp;
    /// A press that went to another program; `pointer` is its place. It is reported once that program has let go of the
    /// pointer, since before that no menu could open.
    std::function<void(QPointF pointer)> onRightMouseDown;
    /// Any button went down on another program's window or the bare desktop.
    std::function<void()> onPressElsewhere;
    /// Wheel steps; positive is away from the user or to the right.
    std::function<void(QPointF pointer, QPointF steps)> onScroll;
    std::function<void(bool capsLock)> onCapsLockChanged;
};
