#pragma once

#include <QAbstractNativeEventFilter>

#include "platform/PanelWindow.h"
#include "platform/linux/x11/X11Drop.h"

/// The panel as a target of the XDND protocol, version 5. Handles the messages before Qt, which would block on the
/// other program whenever it reads data. Main thread only.
///
/// Accepts drops as copies only, so that no source deletes what it dragged.
class X11DropTarget : private QAbstractNativeEventFilter {
 public:
    /// `window` is the window of `panel`, whose listener is called. Both, and `loop`, must outlive this; `loop` must
    /// also outlive the drops.
    X11DropTarget(std::shared_ptr<X11Connection> connection, MainLoop& loop, xcb_window_t window, PanelWindow& panel);
    ~X11DropTarget() override;

 private:
    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;
    void entered(const xcb_client_message_data_t& message);
    void moved(const xcb_client_message_data_t& message);
    void dropped(const xcb_client_message_data_t& message);

    /// Watches the source's window and button releases while a drag is over the panel.
    void watch(const xcb_generic_event_t& event);
    bool watchSource(bool on);
    void forgetSource();
    bool accepts() const;
    void setTargeted(bool targeted);
    void sendStatus(xcb_window_t source, bool accepted);

    std::shared_ptr<X11Connection> connection_;
    MainLoop& loop_;
    xcb_window_t window_;
    PanelWindow& panel_;
    int inputOpcode_ = -1;
    Subscription events_;
    xcb_window_t source_ = XCB_NONE;
    std::vector<DragForm> forms_;
    bool targeted_ = false;
    /// Runs from the button's release until the source reports how the drag ended.
    TimerHandle end_;
};
