#pragma once

#include <array>
#include <memory>
#include <optional>

#include "platform/EventMonitors.h"
#include "platform/linux/x11/PointerSampler.h"
#include "platform/linux/x11/SmoothScroll.h"

/// Listens to raw input events on the root window, which report all input without intercepting it.
class X11EventMonitors : public EventMonitors {
 public:
    /// `isOwnWindow` returns whether a top-level window belongs to this program.
    X11EventMonitors(std::shared_ptr<X11Connection> connection, std::shared_ptr<PointerSampler> sampler,
                     std::function<bool(xcb_window_t)> isOwnWindow);

    void start() override;
    QPointF pointerLocation() const override { return sampler_->sample().pointer; }
    void lookForPointer() override { sampler_->look(); }
    void wantScroll(bool wanted) override;
    bool capsLock() const override;

 private:
    void watchKeyboard();
    void handle(const xcb_generic_event_t& event);
    void buttonChanged(const xcb_input_raw_button_press_event_t& raw);
    void pressed(int button);
    void wheelTurned(int button, uint16_t device, bool isEmulated);
    void released(int button);
    void moved(const PointerSampler::Sample& sample);
    void pointerAt(QPointF pointer);
    void readButtonMap();

    std::shared_ptr<X11Connection> connection_;
    std::shared_ptr<PointerSampler> sampler_;
    std::function<bool(xcb_window_t)> isOwnWindow_;
    Subscription events_;
    Subscription samples_;
    std::optional<SmoothScroll> smoothScroll_;  // while scrolling is wanted
    int inputOpcode_ = -1;
    int keyboardEvent_ = -1;
    QPointF lastMoved_;
    QPointF lastTold_;  // by onMouseMoved
    bool capsLock_ = false;
    /// Where the right button went down in another program's window, while it is held.
    std::optional<QPointF> rightPressElsewhere_;
    /// The logical button of each physical one, which raw events report; both count from 1.
    std::array<uint8_t, 256> buttonMap_{};
};
