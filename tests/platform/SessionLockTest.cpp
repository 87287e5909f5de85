#include <gtest/gtest.h>

#include <QDBusObjectPath>
#include <QDBusVariant>

#include "TestBus.h"
#include "platform/linux/QtMainLoop.h"
#include "platform/linux/SessionLock.h"
#include "platform/linux/ThreadQueues.h"
#include "support/XSession.h"

namespace {
TEST(SessionLock, FollowsTheHintAndTheScreenSaver) {
    const TestBus bus;
    const EnvironmentVariable session("XDG_SESSION_ID", "7");
    const QString login = QStringLiteral("org.freedesktop.login1"),
                  saver = QStringLiteral("org.freedesktop.ScreenSaver");
    const struct {
        QString service, interface, signal;
        QVariantList news;
        std::function<QDBusMessage(const QDBusMessage&, bool)> answer;
    } cases[] = {
        {login,
         QStringLiteral("org.freedesktop.DBus.Properties"),
         QStringLiteral("PropertiesChanged"),
         {login + QStringLiteral(".Session")},
         [](const QDBusMessage& call, bool locked) {
             if (call.member() == QLatin1String("Get"))
                 return call.createReply(QVariant::fromValue(QDBusVariant(locked)));
             if (call.arguments() != QVariantList{QStringLiteral("7")}) return call.createErrorReply({}, {});
             return call.createReply(QVariant::fromValue(QDBusObjectPath(QStringLiteral("/seven"))));
         }},
        {saver,
         saver,
         QStringLiteral("ActiveChanged"),
         {true},
         [](const QDBusMessage& call, bool locked) { return call.createReply(locked); }},
    };
    for (const auto& test : cases) {
        QtMainLoop loop;
        ThreadQueue queue;
        SessionLock lock(loop, queue);
        bool seen = false, locked = false;
        lock.onChange = [&] { seen = lock.locked(); };
        {
            TestService service(test.service);
            service.answer = [&](const QDBusMessage& call) { return test.answer(call, locked); };
            ASSERT_TRUE(waitFor([&] { return !service.calls.isEmpty(); })) << "one that comes later";
            for (const bool now : {true, false, true}) {
                locked = now;
                service.send(QStringLiteral("/seven"), test.interface, test.signal, test.news);
                EXPECT_TRUE(waitFor([&] { return seen == now; })) << test.service.toStdString();
            }
        }
        EXPECT_TRUE(waitFor([&] { return !seen; })) << "and goes";
    }
}
}  // namespace
