#pragma once

#include <QString>

/// Presses media keys for the user. Main thread only.
class MediaKeys {
 public:
    enum class Key { playPause, next, previous };

    virtual ~MediaKeys() = default;

    /// Whether a press can reach this browser (see Players).
    virtual bool isTrusted(const QString& browser) const = 0;
    /// Presses and releases the key for this browser.
    virtual void press(const QString& browser, Key key) = 0;
};
