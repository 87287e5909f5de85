#include "platform/linux/x11/X11DragPasteboard.h"

#include <xcb/xfixes.h>
#include <xcb/xinput.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/linux/x11/DragForms.h"

namespace {
// A responsive source lists its targets within milliseconds; a drag may reach the creature in half a second.
constexpr double kTimeout = 0.3;
constexpr uint32_t kLastRealButton = 3;  // higher ones are wheels, which may turn during drags
constexpr qsizetype kTargetBytes = qsizetype(kMaxTargets) * qsizetype(sizeof(xcb_atom_t));
constexpr char kSelectionName[] = "XdndSelection";
}  // namespace

X11DragPasteboard::X11DragPasteboard(std::shared_ptr<X11Connection> connection, MainLoop& loop,
                                     std::function<bool(xcb_window_t)> isOwnWindow)
    : connection_(std::move(connection)),
      loop_(loop),
      isOwnWindow_(std::move(isOwnWindow)),
      selection_(connection_->atom(kSelectionName)) {
    const auto* fixes = connection_->extension(xcb_xfixes_id);
    if (!fixes || !connection_->ask(xcb_xfixes_query_version, xcb_xfixes_query_version_reply, 1, 0)) return;
    firstEvent_ = fixes->first_event;
    if (const auto* input = connection_->extension(xcb_input_id)) inputOpcode_ = input->major_opcode;
    events_ = connection_->handle([this](const xcb_generic_event_t& event) { handle(event); });
    xcb_xfixes_select_selection_input(connection_->xcb(), connection_->root(), selection_,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    connection_->selectInputOnRoot(XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS, true);
    connection_->flush();
}

void X11DragPasteboard::handle(const xcb_generic_event_t& event) {
    if (code(event) == firstEvent_ + XCB_XFIXES_SELECTION_NOTIFY) {
        const auto& notify = as<xcb_xfixes_selection_notify_event_t>(event);
        if (notify.selection == selection_) setOwner(notify.owner, notify.selection_timestamp);
    } else if (code(event) == XCB_GE_GENERIC && as<xcb_ge_generic_event_t>(event).extension == inputOpcode_) {
        const auto& raw = as<xcb_input_raw_button_press_event_t>(event);
        const bool press = raw.event_type == XCB_INPUT_RAW_BUTTON_PRESS && raw.detail <= kLastRealButton;
        // Not every source releases the selection after a drag, but no drag outlasts the next press.
        if (press && owner_ != XCB_NONE) setOwner(XCB_NONE, XCB_CURRENT_TIME);
    }
}

void X11DragPasteboard::setOwner(xcb_window_t owner, xcb_timestamp_t since) {
    owner_ = owner;
    since_ = since;
    ++changeCount_;
}

void X11DragPasteboard::canReadUsable(std::function<void(bool usable)> answer) {
    answer_ = std::move(answer);
    reader_.reset();
    if (owner_ == XCB_NONE || isOwnWindow_(owner_)) {
        noDragAnswer_ = loop_.after(0, [this] { finish(false); });
        return;
    }
    noDragAnswer_.cancel();
    reader_ = std::make_unique<SelectionReader>(connection_, loop_, kSelectionName, since_);
    reader_->read(connection_->atom("TARGETS"), {.stallTimeout = kTimeout, .maxBytes = kTargetBytes, .cut = true},
                  [this](const auto& data) {
                      if (!data || data->format != 32 || data->bytes.isEmpty()) return finish(isUsableByTypeList());
                      std::vector<xcb_atom_t> targets(size_t(data->bytes.size()) / sizeof(xcb_atom_t));
                      std::memcpy(targets.data(), data->bytes.constData(), targets.size() * sizeof(xcb_atom_t));
                      finish(isUsable(targets));
                  });
}

bool X11DragPasteboard::isUsableByTypeList() {
    const auto types = connection_->values(owner_, "XdndTypeList", XCB_ATOM_ATOM, kMaxTargets);
    return types.empty() || isUsable(types);
}

bool X11DragPasteboard::isUsable(const std::vector<xcb_atom_t>& targets) {
    const auto forms = usableForms(*connection_, targets);
    return std::any_of(forms.begin(), forms.end(), [](const DragForm& form) {
        return form.kind != DragForm::Kind::image && form.kind != DragForm::Kind::contents;
    });
}

void X11DragPasteboard::finish(bool usable) {
    reader_.reset();
    noDragAnswer_.cancel();
    if (const auto answer = std::exchange(answer_, nullptr)) answer(usable);
}
