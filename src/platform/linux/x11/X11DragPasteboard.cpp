#include "platform/linux/x11/X11DragPasteboard.h"

#include <xcb/xfixes.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/linux/x11/DragForms.h"

namespace {
constexpr double patience = 2;  // seconds
constexpr char selectionName[] = "XdndSelection";
}  // namespace

X11DragPasteboard::X11DragPasteboard(std::shared_ptr<X11Connection> connection, MainLoop& loop,
                                     std::function<bool(xcb_window_t)> ownWindow)
    : connection_(std::move(connection)),
      loop_(loop),
      ownWindow_(std::move(ownWindow)),
      selection_(connection_->atom(selectionName)) {
    const auto* fixes = connection_->extension(xcb_xfixes_id);
    if (!fixes || !connection_->ask(xcb_xfixes_query_version, xcb_xfixes_query_version_reply, 1, 0)) return;
    firstEvent_ = fixes->first_event;
    events_ = connection_->handle([this](const xcb_generic_event_t& event) { handle(event); });
    xcb_xfixes_select_selection_input(connection_->xcb(), connection_->root(), selection_,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    connection_->flush();
}

void X11DragPasteboard::handle(const xcb_generic_event_t& event) {
    if (code(event) != firstEvent_ + XCB_XFIXES_SELECTION_NOTIFY) return;
    const auto& notify = as<xcb_xfixes_selection_notify_event_t>(event);
    if (notify.selection != selection_) return;
    owner_ = notify.owner;
    since_ = notify.selection_timestamp;
    ++changeCount_;
}

void X11DragPasteboard::canReadUsable(std::function<void(bool usable)> answer) {
    answer_ = std::move(answer);
    reader_.reset();
    if (owner_ == XCB_NONE || ownWindow_(owner_)) {
        deadline_ = loop_.after(0, [this] { finish(false); });
        return;
    }
    deadline_ = loop_.after(patience, [this] { finish(false); });
    reader_ = std::make_unique<SelectionReader>(connection_, loop_, selectionName, since_);
    reader_->read(connection_->atom("TARGETS"), patience, [this](const auto& data) {
        if (!data || data->format != 32 || data->bytes.isEmpty()) return askWithoutTargets();
        std::vector<xcb_atom_t> targets(size_t(data->bytes.size()) / sizeof(xcb_atom_t));
        std::memcpy(targets.data(), data->bytes.constData(), targets.size() * sizeof(xcb_atom_t));
        finish(usable(targets));
    });
}

void X11DragPasteboard::askWithoutTargets() {
    // Qt refuses to list the targets of a drag, and writes this property when they are more than three.
    const auto types = connection_->values(owner_, "XdndTypeList", XCB_ATOM_ATOM);
    if (!types.empty()) return finish(usable(types));
    tryEach({"text/uri-list", "UTF8_STRING", "text/plain"});
}

void X11DragPasteboard::tryEach(std::vector<QByteArray> targets) {
    if (targets.empty()) return finish(false);
    const xcb_atom_t target = connection_->atom(targets.front());
    targets.erase(targets.begin());
    reader_->read(target, patience, [this, rest = std::move(targets)](const auto& data) {
        if (data && data->format == 8 && !data->bytes.isEmpty()) return finish(true);
        tryEach(rest);
    });
}

bool X11DragPasteboard::usable(const std::vector<xcb_atom_t>& targets) {
    const auto forms = usableForms(*connection_, targets);
    return std::any_of(forms.begin(), forms.end(),
                       [](const DragForm& form) { return form.kind != DragForm::Kind::image; });
}

void X11DragPasteboard::finish(bool usable) {
    reader_.reset();
    deadline_.cancel();
    if (const auto answer = std::exchange(answer_, nullptr)) answer(usable);
}
