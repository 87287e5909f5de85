#include "platform/linux/x11/XSettings.h"

#include <xcb/xcb.h>

#include <QDataStream>
#include <QIODevice>

#include "platform/linux/x11/XcbReply.h"

namespace {
using Connection = std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)>;

xcb_atom_t atom(xcb_connection_t* connection, const QByteArray& name) {
    const auto reply =
        awaitReply(connection, xcb_intern_atom, xcb_intern_atom_reply, false, uint16_t(name.size()), name.constData());
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

/// All settings, in the binary format of the XSETTINGS specification.
QByteArray settings() {
    int screen = 0;
    const Connection connection(xcb_connect(nullptr, &screen), &xcb_disconnect);
    if (xcb_connection_has_error(connection.get())) return {};
    const auto owner = awaitReply(connection.get(), xcb_get_selection_owner, xcb_get_selection_owner_reply,
                                  atom(connection.get(), "_XSETTINGS_S" + QByteArray::number(screen)));
    if (!owner || owner->owner == XCB_WINDOW_NONE) return {};
    const xcb_atom_t name = atom(connection.get(), "_XSETTINGS_SETTINGS");
    constexpr uint32_t kMaxLength = 1 << 16;  // words
    const auto property = awaitReply(connection.get(), xcb_get_property, xcb_get_property_reply, false, owner->owner,
                                     name, name, 0U, kMaxLength);
    if (!property || property->format != 8) return {};
    return {static_cast<const char*>(xcb_get_property_value(property.get())),
            xcb_get_property_value_length(property.get())};
}

// Types of values; the third one is a colour.
constexpr quint8 kInteger = 0, kText = 1;

QByteArray readPadded(QDataStream& stream, quint32 length) {
    if (length > stream.device()->bytesAvailable()) {
        stream.setStatus(QDataStream::ReadPastEnd);
        return {};
    }
    QByteArray bytes(length, Qt::Uninitialized);
    stream.readRawData(bytes.data(), int(length));
    stream.skipRawData(int(-length & 3));
    return bytes;
}
}  // namespace

QString xSetting(const char* name) {
    const QByteArray bytes = settings();
    QDataStream stream(bytes);
    quint8 bigEndian = 0;
    quint32 serial = 0, count = 0;
    stream >> bigEndian;
    stream.setByteOrder(bigEndian ? QDataStream::BigEndian : QDataStream::LittleEndian);
    stream.skipRawData(3);
    stream >> serial >> count;
    for (; count > 0 && stream.status() == QDataStream::Ok; --count) {
        quint8 type = 0;
        quint16 nameLength = 0;
        stream >> type;
        stream.skipRawData(1);
        stream >> nameLength;
        const QByteArray setting = readPadded(stream, nameLength);
        stream >> serial;
        if (type != kText) {
            stream.skipRawData(type == kInteger ? 4 : 8);
            continue;
        }
        quint32 length = 0;
        stream >> length;
        const QByteArray value = readPadded(stream, length);
        if (setting == name) return QString::fromUtf8(value);
    }
    return {};
}
