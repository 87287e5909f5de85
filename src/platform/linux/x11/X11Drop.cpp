#include "platform/linux/x11/X11Drop.h"

#include <QSysInfo>
#include <algorithm>

#include "platform/DropTypes.h"
#include "platform/FileUrls.h"

namespace {
using Limits = SelectionReader::Limits;
constexpr Limits kWholeForm{.stallTimeout = 5};
// Far more text than a note can hold.
constexpr Limits kBeginningOfText{.stallTimeout = 5, .maxBytes = 1 << 20, .cut = true};
// Inbox::await() watches whether the file grows, and decides when to give up.
constexpr Limits kPromiseReply{.stallTimeout = 3600, .totalTimeout = 3600, .maxBytes = 16};
constexpr uint32_t kNameUnits = 1024;  // of four bytes
}  // namespace

void sendXdndFinished(X11Connection& connection, const XdndPeers& peers, bool taken) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = peers.source;
    message.type = connection.atom("XdndFinished");
    message.data.data32[0] = peers.target;
    message.data.data32[1] = taken;
    message.data.data32[2] = taken ? connection.atom("XdndActionCopy") : xcb_atom_t(XCB_ATOM_NONE);
    xcb_send_event(connection.xcb(), false, peers.source, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&message));
    connection.flush();
}

X11Drop::X11Drop(std::shared_ptr<X11Connection> connection, MainLoop& loop, const XdndPeers& peers,
                 std::vector<DragForm> forms, xcb_timestamp_t time)
    : connection_(std::move(connection)),
      peers_(peers),
      forms_(std::move(forms)),
      reader_(connection_, loop, "XdndSelection", time) {
    const bool promises = std::any_of(forms_.begin(), forms_.end(),
                                      [](const DragForm& form) { return form.kind == DragForm::Kind::promise; });
    if (!promises) return;
    const QByteArray name = connection_->bytes(peers_.source, kPromiseTarget, XCB_GET_PROPERTY_TYPE_ANY, kNameUnits);
    if (!name.isEmpty()) promisedName_ = name;
}

X11Drop::~X11Drop() {
    sendXdndFinished(*connection_, peers_, taken_);
}

QStringList X11Drop::types() const {
    QStringList result;
    for (const DragForm& form : forms_) {
        if (form.kind == DragForm::Kind::promise || (form.kind == DragForm::Kind::contents && !promisedName_)) continue;
        const QString type = form.kind == DragForm::Kind::text ? DropTypes::kText : QString::fromLatin1(form.target);
        if (!result.contains(type)) result.append(type);
    }
    return result;
}

void X11Drop::load(const QString& type, Loaded done) {
    if (type == DropTypes::kText) {
        std::vector<QByteArray> targets;
        for (const char* target : kTextTargets) {
            if (std::any_of(forms_.begin(), forms_.end(),
                            [&](const auto& form) { return !qstrcmp(form.target, target); }))
                targets.emplace_back(target);
        }
        return loadText(std::move(targets), std::move(done));
    }
    reader_.read(connection_->atom(type.toUtf8()), kWholeForm, [this, done = std::move(done)](const auto& data) {
        const bool usable = data && data->format == 8 && !data->bytes.isEmpty();
        taken_ |= usable;
        done(usable ? std::optional(data->bytes) : std::nullopt);
    });
}

void X11Drop::loadText(std::vector<QByteArray> targets, Loaded done) {
    if (targets.empty()) return done({});
    const QByteArray target = targets.front();
    targets.erase(targets.begin());
    reader_.read(connection_->atom(target), kBeginningOfText,
                 [this, target, rest = std::move(targets), done = std::move(done)](const auto& data) {
                     const auto text = data ? utf8(target, *data) : std::nullopt;
                     taken_ |= text.has_value();
                     if (text) return done(text);
                     loadText(rest, done);
                 });
}

std::optional<QByteArray> X11Drop::utf8(const QByteArray& target, const SelectionReader::Data& data) {
    QByteArray bytes = data.bytes;
    while (bytes.endsWith('\0')) bytes.chop(1);
    if (data.format != 8 || bytes.isEmpty()) return {};
    if (data.type == connection_->atom("COMPOUND_TEXT")) return {};
    const bool unnamed = target == "text/plain" || target == "TEXT";  // the source chooses the encoding
    if (data.type == XCB_ATOM_STRING || (unnamed && !bytes.isValidUtf8())) return QString::fromLatin1(bytes).toUtf8();
    // Invalid UTF-8 becomes replacement characters.
    return QString::fromUtf8(bytes).toUtf8();
}

void X11Drop::savePromise(const QUrl& target, std::function<void(bool saved)> done) {
    setPromisedFile("file://" + QSysInfo::machineHostName().toUtf8() + pathOf(target).toPercentEncoding("/"));
    reader_.read(connection_->atom(kPromiseTarget), kPromiseReply, [this, done = std::move(done)](const auto& data) {
        const bool saved = data && data->format == 8 && data->bytes == "S";
        taken_ |= saved;
        done(saved);
    });
}

// An empty URI tells the source that its file was not taken.
void X11Drop::setPromisedFile(const QByteArray& uri) {
    xcb_change_property(connection_->xcb(), XCB_PROP_MODE_REPLACE, peers_.source, connection_->atom(kPromiseTarget),
                        connection_->atom("text/plain"), 8, uint32_t(uri.size()), uri.constData());
    connection_->flush();
}
