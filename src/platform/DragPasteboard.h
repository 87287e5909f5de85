#pragma once

#include <functional>

/// What other programs drag over the desktop, seen from outside. Main thread only.
class DragPasteboard {
 public:
    virtual ~DragPasteboard() = default;

    /// Grows with each drag that begins anywhere, and may grow when one is over; costs nothing to ask.
    virtual int changeCount() const = 0;
    /// Asks what the present drag carries and calls `answer` later, once: with true if it can be read as URLs, a
    /// promised file or text, and with false if it cannot or nothing is being dragged, or this program drags. A source
    /// that does not tell within a fraction of a second counts as carrying something of these: what it does carry is
    /// known once it is over the panel. A question that is overtaken by the next one is not answered.
    virtual void canReadUsable(std::function<void(bool usable)> answer) = 0;
};
