#pragma once

#include <QString>

/// The desktop's clipboard. Main thread only.
class Pasteboard {
 public:
    virtual ~Pasteboard() = default;

    /// Replaces what is on the clipboard by plain text.
    virtual void setString(const QString& text) = 0;
};
