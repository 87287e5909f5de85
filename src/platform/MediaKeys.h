#pragma once

/// Presses the keyboard's media keys for the user. Main thread only.
class MediaKeys {
 public:
    enum class Key { playPause, next, previous };

    virtual ~MediaKeys() = default;

    /// Whether a press can reach anybody.
    virtual bool isTrusted() const = 0;
    /// Presses and releases the key.
    virtual void press(Key key) = 0;
};
