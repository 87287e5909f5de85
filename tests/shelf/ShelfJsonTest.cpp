#include <gtest/gtest.h>

#include <cmath>

#include "shelf/Bite.h"
#include "shelf/HeldTimer.h"

namespace {

Bite note(const QString& text) {
    return Bite::note(text);
}

Bite link(const QString& url) {
    return Bite::link(QUrl(url));
}

TEST(ShelfJson, BitesAreWrittenInTheirStoredForm) {
    const struct {
        QList<Bite> bites;
        QByteArray json;
    } cases[] = {
        {{}, "[]"},
        {{note(QStringLiteral("buy milk"))}, R"([{"note":{"_0":"buy milk"}}])"},
        {{link(QStringLiteral("https://example.com/a?b=c&d#e")), note(QStringLiteral("\"1/2\"\n\\"))},
         R"([{"link":{"_0":"https:\/\/example.com\/a?b=c&d#e"}},{"note":{"_0":"\"1\/2\"\n\\"}}])"},
        {{link(QStringLiteral("http://a.b/x y/ü"))}, R"([{"link":{"_0":"http:\/\/a.b\/x%20y\/%C3%BC"}}])"},
        {{note({})}, R"([{"note":{"_0":""}}])"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(encodeBites(c.bites), c.json);
        EXPECT_EQ(decodeBites(c.json), c.bites) << c.json.constData();
    }
}

TEST(ShelfJson, AnyTextSurvivesAsANote) {
    for (const QString& text : {QStringLiteral("🐸 \u2028 \u00a0é"), QString(QChar(0)) + QStringLiteral("\x01\x1f\x7f"),
                                QStringLiteral(R"(\/ \\/ \u0041 {"note":{"_0":"x"}})"), QString(200000, u'/')}) {
        const auto read = decodeBites(encodeBites({note(text)}));
        ASSERT_TRUE(read);
        EXPECT_EQ(*read, QList<Bite>({note(text)}));
    }
}

TEST(ShelfJson, BitesAreReadStrictlyButForOtherMembers) {
    const struct {
        const char* json;
        std::optional<QList<Bite>> read;
    } cases[] = {
        {R"( [ { "note" : { "_0" : "a" } } ] )", {{note(QStringLiteral("a"))}}},
        {R"([{"link":{"_0":"http://a/b"}}])", {{link(QStringLiteral("http://a/b"))}}},
        {R"([{"note":{"_0":"a","_1":2},"colour":"red"}])", {{note(QStringLiteral("a"))}}},
        {R"([{"note":{"_0":"\u0061\ud83d\udc38"}}])", {{note(QStringLiteral("a🐸"))}}},
        {R"([{"note":{"_0":"good"}},{"note":{}}])", {}},
        {R"([{}])", {}},
        {R"([{"colour":{"_0":"red"}}])", {}},
        {R"([{"Note":{"_0":"a"}}])", {}},
        {R"([{"note":{"_0":"a"},"link":{"_0":"b"}}])", {}},
        {R"([{"note":"a"}])", {}},
        {R"([{"note":["a"]}])", {}},
        {R"([{"note":null}])", {}},
        {R"([{"note":{"_0":1}}])", {}},
        {R"([{"note":{"_0":null}}])", {}},
        {R"([{"link":{"_0":""}}])", {}},
        {R"([{"link":{"_0":"http://[bad"}}])", {}},
        {R"([{"link":{"_0":"http://a:port/"}}])", {}},
        {R"([["note"]])", {}},
        {R"([null])", {}},
        {R"(["note"])", {}},
        {R"({"note":{"_0":"a"}})", {}},
        {R"([{"note":{"_0":"a"}})", {}},
        {R"([{"note":{"_0":"a"}}] x)", {}},
        {R"([{"note":{"_0":"a"}},])", {}},
        {R"("text")", {}},
        {"null", {}},
        {"", {}},
        {"\xff\xfe[]", {}},
        {"[{\"note\":{\"_0\":\"\xff\"}}]", {}},
    };
    for (const auto& c : cases) EXPECT_EQ(decodeBites(c.json), c.read) << c.json;
    EXPECT_FALSE(decodeBites(QByteArray(100000, '['))) << "depth must not exhaust the stack";
}

const QUuid kId(QStringLiteral("5e0b4b61-2c7e-4f43-a3e1-1c3a6f2d9b10"));

QByteArray timerJson(const char* id, const char* fireAt, const char* minutes, const char* done) {
    return QByteArray("[{\"id\":") + id + ",\"fireAt\":" + fireAt + ",\"minutes\":" + minutes + ",\"done\":" + done +
           "}]";
}

TEST(ShelfJson, TimersSurviveToTheLastDigit) {
    for (const double fireAt :
         {785001234.5, 785001234.123456, 0.0, -1.5, 785001234.0, 1e17, std::nextafter(8e8, 1e9)}) {
        const QList<HeldTimer> timers{{kId, {fireAt}, 25, false}, {QUuid::createUuid(), {fireAt + 1}, 1, true}};
        EXPECT_EQ(decodeTimers(encodeTimers(timers)), timers) << fireAt;
    }
    const QByteArray json = encodeTimers({{kId, {785001234.5}, 5, false}});
    for (const char* member : {R"("id":"5E0B4B61-2C7E-4F43-A3E1-1C3A6F2D9B10")", R"("fireAt":785001234.5)",
                               R"("minutes":5)", R"("done":false)"})
        EXPECT_TRUE(json.contains(member)) << json.constData();
}

TEST(ShelfJson, TimersAreReadStrictly) {
    const char* id = R"("5E0B4B61-2C7E-4F43-A3E1-1C3A6F2D9B10")";
    const struct {
        QByteArray json;
        bool good;
    } cases[] = {
        {timerJson(id, "1.5", "5", "false"), true},
        {R"([{"done":true,"minutes":5,"more":{},"fireAt":1.5,"id":"5e0b4b61-2c7e-4f43-a3e1-1c3a6f2d9b10"}])", true},
        {timerJson(R"("5E0B4B61-2C7E-4F43-A3E1-1C3A6F2D9B1")", "1", "5", "false"), false},
        {timerJson(R"("{5E0B4B61-2C7E-4F43-A3E1-1C3A6F2D9B10}")", "1", "5", "false"), false},
        {timerJson(R"("5E0B4B612C7E4F43A3E11C3A6F2D9B10")", "1", "5", "false"), false},
        {timerJson(R"("5E0B4B61-2C7E-4F43-A3E1-1C3A6F2D9B1G")", "1", "5", "false"), false},
        {timerJson(R"("5E0B4B61-2C7E-4F43-A3E11-C3A6F2D9B10")", "1", "5", "false"), false},
        {timerJson("5", "1", "5", "false"), false},
        {timerJson(id, R"("1")", "5", "false"), false},
        {timerJson(id, "null", "5", "false"), false},
        {timerJson(id, "1", "5.5", "false"), false},
        {timerJson(id, "1", R"("5")", "false"), false},
        {timerJson(id, "1", "1e300", "false"), false},
        {timerJson(id, "1", "99999999999", "false"), false},
        {timerJson(id, "1", "true", "false"), false},
        {timerJson(id, "1", "5", "0"), false},
        {timerJson(id, "1", "5", R"("false")"), false},
        {R"([{"fireAt":1,"minutes":5,"done":false}])", false},
        {R"([{"id":"5E0B4B61-2C7E-4F43-A3E1-1C3A6F2D9B10","minutes":5,"done":false}])", false},
        {R"([{"id":"5E0B4B61-2C7E-4F43-A3E1-1C3A6F2D9B10","fireAt":1,"done":false}])", false},
        {R"([{"id":"5E0B4B61-2C7E-4F43-A3E1-1C3A6F2D9B10","fireAt":1,"minutes":5}])", false},
    };
    for (const auto& c : cases) EXPECT_EQ(decodeTimers(c.json).has_value(), c.good) << c.json.constData();
}

}  // namespace
