#include <gtest/gtest.h>

#include <QDBusObjectPath>
#include <QDBusVariant>

#include "TestBus.h"
#include "platform/linux/QtMainLoop.h"
#include "platform/linux/SessionLock.h"
#include "platform/linux/ThreadQueues.h"
#include "support/XSession.h"

using namespace Qt::StringLiterals;

namespace {
TEST(SessionLock, FollowsTheHintAndTheScreenSaver) {
    const TestBus bus;
    const EnvironmentVariable session("XDG_SESSION_ID", "7");
    const QString login = u"org.freedesktop.login1"_s, saver = u"org.freedesktop.ScreenSaver"_s;
    const struct {
        QString service, interface, signal;
        QVariantList news;
        std::function<QDBusMessage(const QDBusMessage&, bool)> answer;
    } cases[] = {
        {login,
         u"org.freedesktop.DBus.Properties"_s,
         u"PropertiesChanged"_s,
         {login + u".Session"_s},
         [](const QDBusMessage& call, bool locked) {
             if (call.member() == QLatin1String("Get"))
                 return call.createReply(QVariant::fromValue(QDBusVariant(locked)));
             if (call.arguments() != QVariantList{u"7"_s}) return call.createErrorReply({}, {});
             return call.createReply(QVariant::fromValue(QDBusObjectPath(u"/seven"_s)));
         }},
        {saver,
         saver,
         u"ActiveChanged"_s,
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
            const auto changed = [&] { service.signal(u"/seven"_s, test.interface, test.signal, test.news); };
            for (const bool now : {true, false}) {
                locked = now;
                changed();
                EXPECT_TRUE(waitFor([&] { return seen == now; })) << test.service.toStdString();
            }
            // The screen is locked while the answer is awaited that it is not.
            std::optional<QDBusMessage> awaited;
            service.answer = [&](const QDBusMessage& call) {
                if (call.member() == QLatin1String("GetSession")) return test.answer(call, locked);
                return awaited = call, QDBusMessage();
            };
            changed();
            ASSERT_TRUE(waitFor([&] { return awaited.has_value(); }));
            changed();
            letPass(0.1);  // for the news to be heard
            service.answer = [&](const QDBusMessage& call) { return test.answer(call, true); };
            service.send(test.answer(*awaited, false));
            EXPECT_TRUE(waitFor([&] { return seen; })) << test.service.toStdString();
        }
        EXPECT_TRUE(waitFor([&] { return !seen; })) << "and goes";
    }
}
}  // namespace
