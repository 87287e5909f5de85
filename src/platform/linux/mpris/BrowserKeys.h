#pragma once

#include <memory>
#include <utility>

#include "platform/MediaKeys.h"
#include "platform/linux/mpris/MprisPlayers.h"

/// Reaches the browser that plays by its media entry on the bus, and one without by the keyboard's keys.
class BrowserKeys : public MediaKeys {
 public:
    /// `keyboard` may be null.
    BrowserKeys(MprisPlayers& players, std::unique_ptr<MediaKeys> keyboard)
        : players_(players), keyboard_(std::move(keyboard)) {}

    bool isTrusted(const QString& browser) const override {
        return players_.canRun(browser) || (keyboard_ && keyboard_->isTrusted(browser));
    }
    void press(const QString& browser, Key key) override {
        if (players_.canRun(browser)) return players_.run(browser, verbFor(key));
        if (keyboard_) keyboard_->press(browser, key);
    }

 private:
    static Players::Verb verbFor(Key key) {
        if (key == Key::playPause) return Players::Verb::playPause;
        return key == Key::next ? Players::Verb::nextTrack : Players::Verb::previousTrack;
    }

    MprisPlayers& players_;
    std::unique_ptr<MediaKeys> keyboard_;
};
