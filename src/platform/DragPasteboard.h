#pragma once

#include <functional>

/// The drags of other programs, wherever they are on the desktop. Main thread only.
class DragPasteboard {
 public:
    virtual ~DragPasteboard() = default;

    /// Increases when a drag starts anywhere, and possibly when one ends. Cheap to call.
    virtual int changeCount() const = 0;
    /// Calls `answer` later, once: with true if the current drag can be read as URLs, a promised file or text; with
    /// false if it cannot, if there is no drag, or if this program is its source. A source that does not answer within
    /// a fraction of a second counts as usable: what it carries is known once it is over the panel. A call that is
    /// followed by another before its answer is never answered.
    virtual void canReadUsable(std::function<void(bool usable)> answer) = 0;
};
