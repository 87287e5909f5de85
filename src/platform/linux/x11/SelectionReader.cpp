#include "platform/linux/x11/SelectionReader.h"

#include <algorithm>

namespace {
constexpr int64_t mostBytes = 64 << 20;
constexpr double longestSeconds = 60;
}  // namespace

SelectionReader::SelectionReader(std::shared_ptr<X11Connection> connection, MainLoop& loop, const QByteArray& selection,
                                 xcb_timestamp_t time)
    : connection_(std::move(connection)),
      loop_(loop),
      selection_(connection_->atom(selection)),
      time_(time),
      window_(xcb_generate_id(connection_->xcb())) {
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection_->xcb(), XCB_COPY_FROM_PARENT, window_, connection_->root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    events_ = connection_->handle([this](const xcb_generic_event_t& event) { handle(event); });
}

SelectionReader::~SelectionReader() {
    xcb_destroy_window(connection_->xcb(), window_);
    connection_->flush();
}

void SelectionReader::read(xcb_atom_t target, double patience, Done done) {
    const xcb_atom_t property = connection_->atom("GLIMMET_SELECTION_" + QByteArray::number(++count_));
    const auto read =
        reads_.insert_or_assign(property, Read{target, patience, std::move(done), false, {}, {}, {}}).first;
    read->second.end = loop_.after(longestSeconds, [this, property] { finish(property, {}); });
    awaitMore(read);
    xcb_convert_selection(connection_->xcb(), window_, selection_, target, property, time_);
    connection_->flush();
}

void SelectionReader::awaitMore(Reads::iterator read) {
    read->second.stall = loop_.after(read->second.patience, [this, property = read->first] { finish(property, {}); });
}

void SelectionReader::handle(const xcb_generic_event_t& event) {
    if (code(event) == XCB_SELECTION_NOTIFY) {
        const auto& notify = as<xcb_selection_notify_event_t>(event);
        if (notify.requestor == window_ && notify.selection == selection_) answered(notify);
    } else if (code(event) == XCB_PROPERTY_NOTIFY) {
        const auto& notify = as<xcb_property_notify_event_t>(event);
        if (notify.window != window_ || notify.state != XCB_PROPERTY_NEW_VALUE) return;
        const auto read = reads_.find(notify.atom);
        if (read != reads_.end() && read->second.inPieces) take(read);
    }
}

void SelectionReader::answered(const xcb_selection_notify_event_t& notify) {
    // A refusal does not name the property.
    const auto read = std::find_if(reads_.begin(), reads_.end(), [&](const auto& one) {
        return one.second.target == notify.target && !one.second.inPieces &&
               (notify.property == XCB_NONE || notify.property == one.first);
    });
    if (read == reads_.end()) return;
    if (notify.property == XCB_NONE) return finish(read->first, {});
    take(read);
}

void SelectionReader::take(Reads::iterator read) {
    const xcb_atom_t property = read->first;
    Data& data = read->second.data;
    const uint32_t mostUnits = uint32_t((mostBytes - data.bytes.size()) / 4 + 1);
    const auto reply = connection_->ask(xcb_get_property, xcb_get_property_reply, true, window_, property,
                                        xcb_atom_t(XCB_GET_PROPERTY_TYPE_ANY), 0, mostUnits);
    const bool missing = !reply || reply->type == XCB_ATOM_NONE;
    if (missing && read->second.inPieces) return;  // an event for a piece that was taken already
    if (missing || reply->bytes_after > 0) return finish(property, {});
    if (!read->second.inPieces && reply->type == connection_->atom("INCR")) {
        // Deleting the property, as was done just now, asks for the first piece.
        read->second.inPieces = true;
        return awaitMore(read);
    }
    data.type = reply->type;
    data.format = reply->format;
    const int length = xcb_get_property_value_length(reply.get());
    data.bytes.append(static_cast<const char*>(xcb_get_property_value(reply.get())), length);
    if (data.bytes.size() > mostBytes) return finish(property, {});
    if (read->second.inPieces && length > 0) return awaitMore(read);
    finish(property, std::move(data));
}

void SelectionReader::finish(xcb_atom_t property, std::optional<Data> data) {
    const auto read = reads_.extract(property);
    if (read) read.mapped().done(std::move(data));
}
