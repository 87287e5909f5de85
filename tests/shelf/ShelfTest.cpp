#include <gtest/gtest.h>

#include "shelf/HeldJson.h"
#include "support/Creature.h"

using namespace Qt::StringLiterals;

namespace {

QUrl file(const char* path) {
    return QUrl::fromLocalFile(QString::fromUtf8(path));
}

Bite note(const char* text) {
    return Bite::note(QString::fromUtf8(text));
}

Bite link(const char* address) {
    return Bite::link(QUrl(QString::fromUtf8(address)));
}

QList<QUrl> files(int count, int first = 0) {
    QList<QUrl> list;
    for (int i = first; i < first + count; ++i) list.append(file(("/f/" + QByteArray::number(i)).constData()));
    return list;
}

QList<Bite> notes(int count, int first = 0) {
    QList<Bite> list;
    for (int i = first; i < first + count; ++i) list.append(note(QByteArray::number(i).constData()));
    return list;
}

TEST(Items, TheThirteenthPushesTheOldestOut) {
    CreatureFixture f;
    EXPECT_EQ(f.shelf.addItems(files(12)), 12);
    EXPECT_EQ(f.shelf.addItems({file("/g")}), 1);
    EXPECT_EQ(f.m.items.get(), files(11, 1) + QList{file("/g")});
    EXPECT_EQ(f.shelf.addItems(files(20, 100)), 12);
    for (const char* removed : {"/f/109", "/nowhere"}) f.shelf.removeItem(file(removed));
    EXPECT_EQ(f.m.items.get(), files(1, 108) + files(10, 110));
}

TEST(Items, OneFileIsHeldOnceUnderAnyOfItsPaths) {
    CreatureFixture f;
    EXPECT_EQ(f.shelf.addItems({file("/a/b"), file("/a/./b"), file("/a/c/../b")}), 1);
    EXPECT_EQ(f.m.items->first(), file("/a/b"));
    const int writes = f.preferences.writes;
    for (const char* same : {"/a/./b", "/a//b", "/a/b/"}) EXPECT_EQ(f.shelf.addItems({file(same)}), 0) << same;
    EXPECT_EQ(f.preferences.writes, writes);
}

TEST(Bites, KeepTheLastEightAndAreToldApartByKindAndText) {
    CreatureFixture f;
    EXPECT_EQ(f.shelf.addBites(notes(10)), 8);
    EXPECT_EQ(f.m.bites.get(), notes(8, 2));
    f.m.bites = QList<Bite>();
    EXPECT_EQ(f.shelf.addBites({note("hello"), link("hello"), note("hello"), note("hello ")}), 3);
    f.shelf.removeBite(note("hello"));
    EXPECT_EQ(f.m.bites.get(), (QList{link("hello"), note("hello ")}));
}

TEST(Timers, RoundTheirMinutesButNotTheirTime) {
    for (const auto& [length, minutes] : {std::pair(2.5, 3), {0.2, 1}, {25.0, 25}, {0.0, 1}, {-3.0, 1}, {1.49, 1}}) {
        CreatureFixture f;
        f.m.asleep = true;
        f.shelf.addTimer(length);
        EXPECT_EQ(f.m.timers->first().minutes, minutes) << length;
        EXPECT_NEAR(f.m.timers->first().fireAt - f.clock.now(), length * 60, 1e-6);
        EXPECT_TRUE(f.m.swallowCount == 1 && !f.m.asleep);
    }
}

TEST(Timers, RingOnceAndAreClearedOrRemoved) {
    CreatureFixture f;
    for (const double minutes : {1.0, 5.0, 1.0}) f.shelf.addTimer(minutes);
    f.loop.advance(60);
    EXPECT_TRUE(f.shelf.tickTimers());
    EXPECT_FALSE(f.shelf.tickTimers());
    EXPECT_TRUE(f.m.timers->at(0).done && !f.m.timers->at(1).done && f.m.timers->at(2).done);
    HeldTimer shown = f.m.timers->at(2);
    shown.done = false;  // a chip may be older than the model
    f.shelf.removeTimer(shown);
    EXPECT_EQ(f.m.timers->size(), 2);
    f.shelf.clearDoneTimers();
    EXPECT_TRUE(f.m.timers->size() == 1 && f.m.timers->first().minutes == 5);
}

TEST(Json, BitesHaveExactlyThisForm) {
    EXPECT_EQ(encodeBites({note("buy milk"), link("https://a.example/b c")}),
              R"([{"note":{"_0":"buy milk"}},{"link":{"_0":"https:\/\/a.example\/b%20c"}}])");
    const QList<Bite> both{note("\"\\/\n\u00e4\U0001F600"), link("mailto:x@y")};
    EXPECT_EQ(decodeBites(encodeBites(both)), both);
    EXPECT_EQ(decodeBites(R"([{"link":{"_0":"https://a.example/b"},"extra":1}])"), QList{link("https://a.example/b")});
}

TEST(Json, OneMalformedBiteFailsAll) {
    const QByteArray good = R"({"note":{"_0":"x"}})";
    for (const char* bad :
         {"{}", R"({"note":{"_0":"x"},"link":{"_0":"http:\/\/x"}})", R"({"note":"x"})", R"({"note":{"_1":"x"}})",
          R"({"note":{"_0":5}})", R"({"link":{"_0":""}})", R"({"link":{"_0":"http://["}})",
          R"({"link":{"_0":"http://a/%zz"}})", "null", "[]", R"({"note":{"_0":"x"})"}) {
        EXPECT_FALSE(decodeBites('[' + good + ',' + bad + ']')) << bad;
    }
    for (const char* bad : {"", "{}", "7", "[1", "\1\2"}) EXPECT_FALSE(decodeBites(bad)) << bad;
}

TEST(Json, TimersReadWhatWasWrittenAndNothingElse) {
    const QByteArray json =
        R"([{"id":"5E0B4B61-2C7E-4F43-A3E1-1C3A6F2D9B10","fireAt":785001234.5,"minutes":5,"done":false}])";
    const auto read = decodeTimers(json);
    ASSERT_TRUE(read && read->size() == 1);
    EXPECT_TRUE(read->first().fireAt.seconds == 785001234.5 && read->first().minutes == 5);
    EXPECT_EQ(decodeTimers(encodeTimers(*read)), read);
    EXPECT_TRUE(encodeTimers(*read).contains("\"5E0B4B61-2C7E-4F43-A3E1-1C3A6F2D9B10\""));
    for (const char* spoil : {R"("done":false|"done":0)", R"(,"done":false|)", R"(785001234.5|"soon")", ":5,|:5.5,",
                              ":5,|:1e10,", "5E0B4B61|{5E0B4B61", "5E0B4B61|XE0B4B61", "-1C3A6F2D9B10|"}) {
        const QByteArrayList parts = QByteArray(spoil).split('|');
        EXPECT_FALSE(decodeTimers(QByteArray(json).replace(parts[0], parts[1]))) << spoil;
    }
}

/// What a restart does: another shelf over the same preferences and files.
struct Restarted {
    explicit Restarted(CreatureFixture& f) : shelf(m, f.shelfPorts()) {
        shelf.loadShelf();
        shelf.loadHeld();
    }
    NotchModel m;
    Shelf shelf;
};

TEST(Store, ARestartKeepsWhatIsHeldButRungTimers) {
    CreatureFixture f;
    f.shelf.addItems(files(3));
    f.shelf.addBites(notes(2));
    for (const int minutes : {1, 2, 3}) f.shelf.addTimer(minutes);
    f.loop.advance(61);
    f.shelf.tickTimers();
    f.m.hidden = true;
    f.loop.advance(70);  // the second falls due while nothing looks
    Restarted again(f);
    EXPECT_EQ(again.m.items.get(), f.m.items.get());
    EXPECT_EQ(again.m.bites.get(), f.m.bites.get());
    EXPECT_TRUE(again.m.hidden);
    ASSERT_EQ(again.m.timers->size(), 2);
    EXPECT_EQ(again.m.timers->first().minutes, 2);
    EXPECT_TRUE(again.shelf.tickTimers());

    again.shelf.removeBite(note("0"));
    again.shelf.removeBite(note("1"));
    EXPECT_EQ(Restarted(f).m.bites.get(), QList<Bite>()) << "what was removed does not come back";
}

TEST(Store, WhatCannotBeReadStaysUntilItIsWrittenAnew) {
    CreatureFixture f;
    const QString key = u"glimmet.bites"_s;
    f.preferences.setData(key, "[{]");
    f.preferences.setData(u"glimmet.timers"_s, "[7]");
    f.preferences.setData(u"glimmet.shelf"_s, "not a list");
    Restarted again(f);
    EXPECT_TRUE(again.m.bites->isEmpty() && again.m.timers->isEmpty() && again.m.items->isEmpty());
    EXPECT_EQ(f.preferences.data(key), QByteArray("[{]"));
    again.shelf.addBites(notes(1));
    EXPECT_EQ(f.preferences.data(key), encodeBites(notes(1)));
}

TEST(Store, AFileThatIsGoneIsForgottenAndARenamedOneIsNot) {
    CreatureFixture f;
    f.shelf.addItems(files(3));
    f.files.missing = {u"/f/0"_s, u"/f/1"_s};
    f.files.renamed.insert(u"/f/0"_s, u"/f/new name"_s);
    f.shelf.addItems(files(1, 5));
    EXPECT_EQ(Restarted(f).m.items.get(), (QList{file("/f/new name"), file("/f/2"), file("/f/5")}));
    EXPECT_EQ(f.preferences.dataList(u"glimmet.shelf"_s)->size(), 3);
}

TEST(Store, WhatADiskIsStillAskedAboutStaysStored) {
    CreatureFixture f;
    f.shelf.addItems(files(3));
    f.files.silent.insert(u"/f/1"_s);
    Restarted late(f);
    EXPECT_TRUE(late.m.items->isEmpty());
    late.shelf.addItems(files(1, 9));
    const auto stored = [&] { return *f.preferences.dataList(u"glimmet.shelf"_s); };
    EXPECT_EQ(stored(), (QList<QByteArray>{"id:/f/0", "id:/f/1", "id:/f/2", "id:/f/9"}));
    f.files.answer();
    EXPECT_EQ(late.m.items.get(), files(3) + files(1, 9));

    f.files.silent.insert(u"/f/7"_s);
    late.shelf.replaceItems(files(1, 7));
    EXPECT_EQ(stored(), QList<QByteArray>{"/f/7"}) << "as far as it is known";
    f.files.answer();
    EXPECT_EQ(stored(), QList<QByteArray>{"id:/f/7"});
}

TEST(Store, WhatIsHeldBeforePreferencesAreReadJoinsWhatIsStored) {
    CreatureFixture f;
    f.shelf.addItems(files(2));
    f.shelf.addBites(notes(2));
    f.shelf.addTimer(1);
    const auto before = f.preferences.values;
    f.preferences.read = false;
    NotchModel late;
    Shelf shelf(late, f.shelfPorts());
    shelf.addItems(files(2, 1));
    shelf.addBites(notes(8, 1));
    shelf.addTimer(2);
    EXPECT_EQ(f.preferences.values, before) << "nothing is written over it";
    f.preferences.arrive();
    shelf.loadShelf();
    shelf.loadHeld();
    const Restarted again(f);
    for (const NotchModel* m : std::initializer_list<const NotchModel*>{&late, &again.m}) {
        EXPECT_EQ(m->items.get(), files(3));
        EXPECT_EQ(m->bites.get(), notes(8, 1));
        EXPECT_EQ(m->timers->size(), 2);
        EXPECT_EQ(m->timers->last().minutes, 2);
    }
}

TEST(Store, OfAThousandTimersTheFirstOnesRunAndNoneIsLost) {
    CreatureFixture f;
    QList<HeldTimer> stored;
    for (int i = 0; i < 1000; ++i) stored.append({QUuid::createUuid(), f.clock.now() + 60, 1, false});
    f.preferences.setData(u"glimmet.timers"_s, encodeTimers(stored));
    Restarted again(f);
    EXPECT_EQ(again.m.timers->size(), 200);
    again.shelf.removeTimer(stored.first());
    EXPECT_EQ(decodeTimers(*f.preferences.data(u"glimmet.timers"_s)), stored.mid(1));
}

}  // namespace
