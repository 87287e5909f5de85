#pragma once

#include <memory>

#include "platform/MediaKeys.h"
#include "platform/linux/x11/X11Connection.h"

/// Presses the media keys of the X server's keyboard; the desktop decides whom they reach.
class XTestKeys : public MediaKeys {
 public:
    explicit XTestKeys(std::shared_ptr<X11Connection> connection) : connection_(std::move(connection)) {}

    bool isTrusted(const QString& browser) const override;
    void press(const QString& browser, Key key) override;

 private:
    /// The key's code in the present layout; 0 if there is none.
    uint8_t codeOf(Key key) const;

    std::shared_ptr<X11Connection> connection_;
};
