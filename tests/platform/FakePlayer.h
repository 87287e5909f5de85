#pragma once

#include "TestBus.h"

/// A media player on the test's bus that tells what it is told to.
class FakePlayer : public TestService {
 public:
    explicit FakePlayer(const QString& name, const QVariantMap& about = {})
        : TestService(QStringLiteral("org.mpris.MediaPlayer2.") + name) {
        answer = [this, about](const QDBusMessage& call) {
            if (call.member() != QLatin1String("GetAll")) return call.createReply();
            const bool isPlayer = call.arguments().value(0) == kPlayer;
            return call.createReply(isPlayer ? properties : about);
        };
    }

    /// A change that it announces.
    void tell(const QVariantMap& news, const QStringList& stale = {}) {
        for (auto one = news.begin(); one != news.end(); ++one) properties.insert(one.key(), one.value());
        signal(QStringLiteral("/org/mpris/MediaPlayer2"), QStringLiteral("org.freedesktop.DBus.Properties"),
               QStringLiteral("PropertiesChanged"), {kPlayer, news, stale});
    }
    void play(const QVariantMap& metadata) {
        tell({{QStringLiteral("PlaybackStatus"), QStringLiteral("Playing")}, {QStringLiteral("Metadata"), metadata}});
    }
    /// The methods of a player that were called, with their arguments.
    QStringList commands() const {
        QStringList list;
        for (const QDBusMessage& call : calls) {
            if (call.interface() == kPlayer)
                list.append(call.member() + (call.arguments().isEmpty() ? QString() : call.arguments()[0].toString()));
        }
        return list;
    }

    QVariantMap properties;

 private:
    inline static const QString kPlayer = QStringLiteral("org.mpris.MediaPlayer2.Player");
};
