#include <gtest/gtest.h>

#include "support/Creature.h"

namespace {

QUrl file(const QString& path) {
    return QUrl::fromLocalFile(path);
}

QList<QUrl> numbered(int from, int to) {
    QList<QUrl> urls;
    for (int i = from; i <= to; ++i) urls.append(file(QStringLiteral("/f%1").arg(i)));
    return urls;
}

QList<Bite> notes(int from, int to) {
    QList<Bite> bites;
    for (int i = from; i <= to; ++i) bites.append(Bite::note(QString::number(i)));
    return bites;
}

class Shelf : public testing::Test, protected CreatureFixture {};

TEST_F(Shelf, HoldsTwelveFilesAndLetsGoOfTheOldest) {
    EXPECT_EQ(m.addItems(numbered(1, 12)), 12);
    EXPECT_EQ(m.items.get(), numbered(1, 12)) << "oldest first";
    EXPECT_EQ(m.addItems(numbered(13, 13)), 1);
    EXPECT_EQ(m.items.get(), numbered(2, 13));
    EXPECT_EQ(m.addItems(numbered(20, 49)), 12) << "no more are new than can be held";
    EXPECT_EQ(m.items.get(), numbered(38, 49));
}

TEST_F(Shelf, KnowsAFileByItsStandardizedPath) {
    EXPECT_EQ(m.addItems({file(QStringLiteral("/a/b")), file(QStringLiteral("/a/b"))}), 1);
    const int writes = preferences.writes;
    for (const char* same : {"/a/b", "/a/./b", "/a/c/../b", "/a//b", "/a/b/", "/./a/b"})
        EXPECT_EQ(m.addItems({file(QString::fromLatin1(same))}), 0) << same;
    EXPECT_EQ(m.addItems({}), 0);
    EXPECT_EQ(preferences.writes, writes) << "nothing new, nothing written";
    for (const char* other : {"/a/B", "/a/b.", "/a/b%2F", "/a/ b", "/a/b#"})
        EXPECT_EQ(m.addItems({file(QString::fromLatin1(other))}), 1) << other;

    EXPECT_EQ(m.addItems({file(QStringLiteral("/x/./y"))}), 1);
    EXPECT_EQ(m.items->last(), file(QStringLiteral("/x/./y"))) << "held as it came";
}

TEST_F(Shelf, HoldsEightBitesAndKnowsThemByTheirKey) {
    EXPECT_EQ(m.addBites(notes(1, 3)), 3);
    EXPECT_EQ(m.addBites(notes(4, 13)), 8);
    EXPECT_EQ(m.bites.get(), notes(6, 13));

    m.bites = {};
    const Bite note = Bite::note(QStringLiteral("hello"));
    const Bite link = Bite::link(QUrl(QStringLiteral("hello")));
    EXPECT_EQ(m.addBites({note, link, note}), 2);
    const int writes = preferences.writes;
    EXPECT_EQ(m.addBites({link, note}), 0);
    EXPECT_EQ(preferences.writes, writes);
    EXPECT_EQ(m.addBites({Bite::note(QStringLiteral(" hello"))}), 1) << "notes are held unchanged";
    EXPECT_EQ(biteKey(note), QStringLiteral("n:hello"));
    EXPECT_EQ(biteKey(link), QStringLiteral("l:hello"));
    EXPECT_EQ(biteKey(Bite::link(QUrl(QStringLiteral("https://example.com/ä b?q=1#x")))),
              QStringLiteral("l:https://example.com/%C3%A4%20b?q=1#x"));
}

TEST_F(Shelf, TimersCountFromNowInWholeMinutesOnTheirChip) {
    const struct {
        double length;
        double seconds;
        int minutes;
    } cases[] = {{5, 300, 5}, {2.5, 150, 3}, {2.4, 144, 2}, {0.2, 12, 1}, {0, 0, 1}, {-3, -180, 1}, {90.5, 5430, 91}};
    for (const auto& c : cases) {
        const int swallows = m.swallowCount;
        clock.step(1);
        m.addTimer(c.length);
        const HeldTimer& timer = m.timers->last();
        EXPECT_NEAR(timer.fireAt - clock.now(), c.seconds, 1e-6) << c.length;
        EXPECT_EQ(timer.minutes, c.minutes) << c.length;
        EXPECT_FALSE(timer.done);
        EXPECT_EQ(m.swallowCount, swallows + 1);
        EXPECT_EQ(m.lastActivity, clock.now());
    }
    QSet<QString> ids;
    for (const HeldTimer& timer : m.timers.get()) ids.insert(timer.id.toString());
    EXPECT_EQ(ids.size(), qsizetype(std::size(cases)));
}

TEST_F(Shelf, ATickRingsWhatIsDueOnce) {
    m.addTimer(1);
    m.addTimer(1);
    m.addTimer(2);
    const auto rung = [&] {
        QString which;
        for (const HeldTimer& timer : m.timers.get()) which += timer.done ? u'!' : u'.';
        return which;
    };
    clock.step(59.999);
    EXPECT_FALSE(m.tickTimers());
    clock.setNow(m.timers->first().fireAt);  // due at its very moment
    const int writes = preferences.writes;
    EXPECT_TRUE(m.tickTimers());
    EXPECT_EQ(rung(), QStringLiteral("!!."));
    EXPECT_EQ(preferences.writes, writes + 2);
    EXPECT_FALSE(m.tickTimers());
    EXPECT_EQ(preferences.writes, writes + 2);

    clock.setNow({0});  // set back by the user: what has rung stays rung
    EXPECT_FALSE(m.tickTimers());
    EXPECT_EQ(rung(), QStringLiteral("!!."));

    m.clearDoneTimers();
    EXPECT_EQ(rung(), QStringLiteral("."));
}

TEST_F(Shelf, RemovesOnlyWhatIsNamed) {
    m.addItems(numbered(1, 3));
    m.removeItem(file(QStringLiteral("/f2")));
    m.removeItem(file(QStringLiteral("/f9")));
    EXPECT_EQ(m.items.get(), QList<QUrl>({file(QStringLiteral("/f1")), file(QStringLiteral("/f3"))}));

    const Bite note = Bite::note(QStringLiteral("a"));
    const Bite link = Bite::link(QUrl(QStringLiteral("a")));
    m.addBites({note, link});
    m.removeBite(note);
    EXPECT_EQ(m.bites.get(), QList<Bite>({link}));

    m.addTimer(1);
    m.addTimer(1);
    HeldTimer first = m.timers->first();
    first.done = true;  // a chip may be older than the model
    m.removeTimer(first);
    ASSERT_EQ(m.timers->size(), 1);
    EXPECT_NE(m.timers->first().id, first.id);
    EXPECT_EQ(m.heldCount(), 4);
}

}  // namespace
