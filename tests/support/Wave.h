#pragma once

#include <QByteArray>
#include <QtEndian>

/// A sound file of so many seconds of silence, with these tags.
inline QByteArray waveFile(int seconds, const QByteArray& title, const QByteArray& artist) {
    constexpr quint32 kRate = 8000;
    const auto number = [](auto value) {
        value = qToLittleEndian(value);
        return QByteArray(reinterpret_cast<const char*>(&value), sizeof value);
    };
    const auto chunk = [&](const char* name, QByteArray bytes) {
        const QByteArray head = name + number(quint32(bytes.size()));
        return head + (bytes.size() % 2 ? bytes + '\0' : bytes);
    };
    const QByteArray format = number(quint16(1)) + number(quint16(1)) + number(kRate) + number(kRate) +
                              number(quint16(1)) + number(quint16(8));
    const QByteArray tags = "INFO" + chunk("INAM", title + '\0') + chunk("IART", artist + '\0');
    return chunk("RIFF", "WAVE" + chunk("fmt ", format) + chunk("LIST", tags) +
                             chunk("data", QByteArray(seconds * int(kRate), '\x80')));
}
