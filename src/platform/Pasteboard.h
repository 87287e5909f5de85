#pragma once

#include <QString>

/// The desktop's clipboard. Main thread only.
class Pasteboard {
 public:
    virtual ~Pasteboard() = default;

    /// Replaces the contents of the clipboard with plain text.
    virtual void setString(const QString& text) = 0;
};
