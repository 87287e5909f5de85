#include "platform/linux/x11/SelectionReader.h"

#include <algorithm>

namespace {
constexpr uint32_t kUnit = 4;  // bytes; the server's unit for lengths of properties
// Fetching this much takes less than a millisecond.
constexpr uint32_t kSliceBytes = 256 << 10;
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

void SelectionReader::read(xcb_atom_t target, const Limits& limits, Done done) {
    const xcb_atom_t property = connection_->atom("GLIMMET_SELECTION_" + QByteArray::number(++count_));
    const auto read =
        reads_.insert_or_assign(property, Read{target, limits, std::move(done), false, 0, {}, {}, {}, {}}).first;
    read->second.end = loop_.after(limits.totalTimeout, [this, property] { finish(property, {}); });
    awaitMore(read);
    xcb_convert_selection(connection_->xcb(), window_, selection_, target, property, time_);
    connection_->flush();
}

void SelectionReader::awaitMore(Reads::iterator read) {
    read->second.stall =
        loop_.after(read->second.limits.stallTimeout, [this, property = read->first] { finish(property, {}); });
}

void SelectionReader::handle(const xcb_generic_event_t& event) {
    if (code(event) == XCB_SELECTION_NOTIFY) {
        const auto& notify = as<xcb_selection_notify_event_t>(event);
        if (notify.requestor == window_ && notify.selection == selection_) answered(notify);
    } else if (code(event) == XCB_PROPERTY_NOTIFY) {
        const auto& notify = as<xcb_property_notify_event_t>(event);
        if (notify.window != window_ || notify.state != XCB_PROPERTY_NEW_VALUE) return;
        const auto read = reads_.find(notify.atom);
        if (read != reads_.end() && read->second.inPieces && !read->second.next) take(read->first);
    }
}

void SelectionReader::answered(const xcb_selection_notify_event_t& notify) {
    // A refusal has no property.
    const auto read = std::find_if(reads_.begin(), reads_.end(), [&](const auto& one) {
        return one.second.target == notify.target && !one.second.inPieces && !one.second.next &&
               (notify.property == XCB_NONE || notify.property == one.first);
    });
    if (read == reads_.end()) return;
    if (notify.property == XCB_NONE) return finish(read->first, {});
    take(read->first);
}

void SelectionReader::take(xcb_atom_t property) {
    const auto read = reads_.find(property);
    if (read == reads_.end()) return;
    read->second.next.cancel();
    const auto slice =
        connection_->ask(xcb_get_property, xcb_get_property_reply, false, window_, property,
                         xcb_atom_t(XCB_GET_PROPERTY_TYPE_ANY), read->second.offset, kSliceBytes / kUnit);
    const bool missing = !slice || slice->type == XCB_ATOM_NONE;
    if (missing && read->second.inPieces && read->second.offset == 0) return;  // this piece was taken already
    if (missing) return finish(property, {});
    if (!read->second.inPieces && slice->type == connection_->atom("INCR")) {
        read->second.inPieces = true;
        remove(property);  // requests the first piece
        return awaitMore(read);
    }
    sliceTaken(read, *slice);
}

void SelectionReader::sliceTaken(Reads::iterator read, const xcb_get_property_reply_t& slice) {
    const xcb_atom_t property = read->first;
    Data& data = read->second.data;
    const Limits& limits = read->second.limits;
    const int length = xcb_get_property_value_length(&slice);
    const qsizetype room = limits.maxBytes - data.bytes.size();
    const qsizetype waiting = length + qsizetype(slice.bytes_after);
    if (waiting > room && !limits.cut) return finish(property, {});
    if (read->second.offset == 0 && slice.bytes_after > 0)
        data.bytes.reserve(data.bytes.size() + std::min(waiting, room));
    const bool full = limits.cut && length >= room;
    data.type = slice.type;
    data.format = slice.format;
    data.bytes.append(static_cast<const char*>(xcb_get_property_value(&slice)), std::min<qsizetype>(length, room));
    if (length > 0 && slice.bytes_after > 0 && !full) {
        read->second.offset += uint32_t(length) / kUnit;
        read->second.next = loop_.after(0, [this, property] { take(property); });
        return awaitMore(read);
    }
    const bool last = full || !read->second.inPieces || (length == 0 && read->second.offset == 0);
    read->second.offset = 0;
    remove(property);
    if (last) return finish(property, std::move(data));
    awaitMore(read);
}

// In an incremental transfer this requests the next piece.
void SelectionReader::remove(xcb_atom_t property) {
    xcb_delete_property(connection_->xcb(), window_, property);
    connection_->flush();
}

void SelectionReader::finish(xcb_atom_t property, std::optional<Data> data) {
    const auto read = reads_.extract(property);
    if (read) read.mapped().done(std::move(data));
}
