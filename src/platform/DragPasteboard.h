#pragma once

#include <functional>

/// What other programs drag over the desktop, seen from outside. Main thread only.
class DragPasteboard {
 public:
    virtual ~DragPasteboard() = default;

    /// Grows with each drag that begins anywhere; costs nothing to ask.
    virtual int changeCount() const = 0;
    /// Asks what the latest drag carries and calls `answer` later, once: with true if it can be read as URLs, a
    /// promised file or text. A source that does not answer within two seconds counts as carrying nothing of these.
    /// A question that is overtaken by the next one is not answered.
    virtual void canReadUsable(std::function<void(bool usable)> answer) = 0;
};
