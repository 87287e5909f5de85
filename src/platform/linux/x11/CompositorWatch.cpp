#include "platform/linux/x11/CompositorWatch.h"

#include <xcb/randr.h>
#include <xcb/xfixes.h>

CompositorWatch::CompositorWatch(std::shared_ptr<X11Connection> connection, std::function<void()> onChange)
    : connection_(std::move(connection)),
      onChange_(std::move(onChange)),
      selection_(connection_->atom("_NET_WM_CM_S" + QByteArray::number(connection_->screenNumber()))) {
    const auto* fixes = connection_->extension(xcb_xfixes_id);
    if (fixes && connection_->ask(xcb_xfixes_query_version, xcb_xfixes_query_version_reply, 1, 0)) {
        firstEvent_ = fixes->first_event;
        events_ = connection_->handle([this](const xcb_generic_event_t& event) { handle(event); });
        xcb_xfixes_select_selection_input(connection_->xcb(), connection_->root(), selection_,
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    }
    const auto owner = connection_->ask(xcb_get_selection_owner, xcb_get_selection_owner_reply, selection_);
    running_ = owner && owner->owner != XCB_NONE;
}

void CompositorWatch::handle(const xcb_generic_event_t& event) {
    if (firstEvent_ < 0 || code(event) != firstEvent_ + XCB_XFIXES_SELECTION_NOTIFY) return;
    const auto& notify = as<xcb_xfixes_selection_notify_event_t>(event);
    const bool running = notify.owner != XCB_NONE;
    if (notify.selection != selection_ || running == running_) return;
    running_ = running;
    onChange_();
}

bool isXWayland(X11Connection& connection) {
    const QByteArray name = "XWAYLAND";
    const auto extension =
        connection.ask(xcb_query_extension, xcb_query_extension_reply, uint16_t(name.size()), name.constData());
    if (extension && extension->present) return true;

    // Servers without that extension can be recognised by the names of their outputs.
    if (!connection.extension(xcb_randr_id)) return false;
    const auto resources = connection.ask(xcb_randr_get_screen_resources_current,
                                          xcb_randr_get_screen_resources_current_reply, connection.root());
    if (!resources) return false;
    const xcb_randr_output_t* outputs = xcb_randr_get_screen_resources_current_outputs(resources.get());
    for (int i = 0; i < xcb_randr_get_screen_resources_current_outputs_length(resources.get()); ++i) {
        const auto output = connection.ask(xcb_randr_get_output_info, xcb_randr_get_output_info_reply, outputs[i],
                                           resources->config_timestamp);
        if (output && QByteArray(reinterpret_cast<const char*>(xcb_randr_get_output_info_name(output.get())),
                                 xcb_randr_get_output_info_name_length(output.get()))
                          .startsWith(name))
            return true;
    }
    return false;
}
