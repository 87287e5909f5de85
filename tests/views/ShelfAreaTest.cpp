#include <gtest/gtest.h>

#include "views/Chip.h"
#include "views/Picture.h"

using namespace Qt::StringLiterals;

namespace {

QUrl file(const char* name) {
    return QUrl::fromLocalFile(QStringLiteral("/f/") + QString::fromUtf8(name));
}

struct ShelfFixture : PictureFixture {
    explicit ShelfFixture(int fileCount = 4, int biteCount = 2) {
        QList<QUrl> items;
        for (const char* name : {"a.png", "b.pdf", "c", "d.txt", "e", "f", "g"}) items.append(file(name));
        m.items = items.mid(0, fileCount);
        m.bites = QList{Bite::note(u"soup"_s), Bite::link(QUrl(u"https://a.example/b"_s))}.mid(0, biteCount);
        m.hovering = true;
        rest();
    }

    /// What is shown folded.
    QList<HeldThing> things() const {
        QList<HeldThing> all;
        for (const HeldTimer& timer : m.timers.get()) all.append(timer);
        for (const QUrl& item : m.items->mid(0, 3)) all.append(item);
        for (const Bite& bite : m.bites->mid(0, 2)) all.append(bite);
        return all;
    }
    /// The thing whose menu a place of the panel opens.
    std::optional<HeldThing> thingAt(const QPointF& place) {
        const Hit hit = root.hit(place);
        if (!hit.menu) return {};
        hit.menu();
        return menus.takeLast();
    }
    /// Where chip `i` of the folded row has its middle, on the panel.
    QPointF chip(int i) {
        for (double x = 20; x < 340; x += 0.5)
            if (thingAt({x, kRow}) == things()[i]) return {x + Chip::kWidth / 2, kRow};
        return {};
    }
    QPointF button(int i) { return chip(i) + QPointF(18, -20); }
    bool isButton(const QPointF& place) { return bool(root.hit(place).showPressed); }
    QRectF aroundFirst(double x, double y) { return {chip(0) - QPointF(180 + x, y), QSizeF(2 * x, 2 * y)}; }
    /// Whether a pill, whose middle is so far to the right, has this text.
    bool pillSays(const QString& text, int middle) {
        const QImage seen = picture().copy(QRect(2 * (180 + middle - 8), 2 * (int(kRow) - 6), 32, 24));
        const auto draw = [&](Canvas& canvas, QPainter&) {
            canvas.text(text, {8, 6}, {11, QFont::DemiBold, Face::rounded}, QColor(255, 255, 255, 191));
        };
        return difference(seen, drawn({16, 12}, kRatio, QColor(31, 31, 31), caches, draw)) < 30;
    }

    static constexpr double kRow = 42 + 30 + 12 + 28;
};

TEST(Shelf, EachThingAnswersInItsOwnWay) {
    ShelfFixture f;
    f.shelf.addTimer(5);
    f.rest();
    for (int i = 0; i < 6; ++i) {
        const Hit hit = f.root.hit(f.chip(i));
        hit.tap();
        EXPECT_EQ(std::holds_alternative<Hit::File>(hit.drag), i >= 1 && i <= 3) << i;
        EXPECT_EQ(std::holds_alternative<Hit::Slide>(hit.drag), i < 1 || i > 3) << i;
    }
    EXPECT_EQ(f.used, f.things().mid(1));
    EXPECT_EQ(f.taps, 1) << "a tap on a countdown is one on the creature";
}

TEST(Shelf, APressBelongsToTheChipThatItBeganOn) {
    ShelfFixture f;
    const HeldThing second = f.things()[1];
    const QPointF place = f.chip(1);
    const Hit hit = f.root.hit(place);
    f.shelf.addTimer(5);  // which moves the row
    f.rest();
    ASSERT_NE(f.thingAt(place), second);
    hit.tap();
    EXPECT_EQ(f.used, QList{second});
    f.root.pointerMoved(f.chip(2));
    const Hit button = f.root.hit(f.button(2));
    f.m.items = QList<QUrl>();
    for (int i = 0; i < 2; ++i, f.m.bites = QList<Bite>(), f.rest()) {
        hit.tap();
        button.showPressed(false);
        button.tap();
    }
    EXPECT_EQ(f.used.size() + f.removed.size(), 1) << "nobody can use what is gone";
}

TEST(Shelf, TheRemoveButtonIsThereForAMoment) {
    ShelfFixture f;
    EXPECT_FALSE(f.isButton(f.button(0))) << "it is not there without the pointer";
    f.root.pointerMoved(f.chip(0));
    f.rest(0.3);
    const Hit hit = f.root.hit(f.button(0));
    EXPECT_EQ(hit.tapReach, 14);
    EXPECT_TRUE(std::holds_alternative<std::monostate>(hit.drag)) << "it is nothing to be pulled";
    const QImage before = f.picture();
    for (const bool pressed : {true, false}) {
        hit.showPressed(pressed);
        f.rest(0.2);
        EXPECT_EQ(f.picture() == before, !pressed);
    }
    hit.tap();
    EXPECT_EQ(f.removed, QList{f.things()[0]});

    f.root.pointerMoved(f.chip(1));
    f.loop.advance(0.4);
    EXPECT_TRUE(f.isButton(f.button(0))) << "still there for who is on the way to it";
    f.loop.advance(0.1);
    EXPECT_FALSE(f.isButton(f.button(0)));
}

TEST(Shelf, HoverFollowsChipsThatComeUnderAStillPointer) {
    ShelfFixture f(1, 0);
    f.m.hovering = false;
    f.rest();
    f.m.withAnimation(commonSpring(), [&] { f.m.hovering = true; });
    f.root.pointerMoved(QPointF(180, 135));  // where the chip will be
    for (; f.root.nextFrame() <= f.clock.uptime(); f.loop.advance(1 / 60.0)) f.picture();
    EXPECT_EQ(f.traces, QStringList{u"chip a.png hover → true"_s});
}

TEST(Shelf, AHoveredChipGrowsAndGlows) {
    ShelfFixture f(0);  // notes have no orange of their own
    f.root.pointerMoved(f.chip(0));
    f.rest(0.5);
    const QRectF glow = f.seen(f.aroundFirst(31, 29.5), [](QColor c) { return c.red() > 60 && c.blue() < 30; });
    EXPECT_NEAR(glow.width(), Chip::kWidth * 1.07, 1.1);
    EXPECT_NEAR(glow.height(), Chip::kHeight * 1.07, 1.1);
    for (const QPointF& way : {QPointF(26.5, 0), QPointF(0, 28.7)})
        EXPECT_TRUE(f.thingAt(f.chip(0) + way)) << "it answers where it is lit";
}

TEST(Shelf, WhispersAboveTheRimAndStepsBackBehindTheOpenMouth) {
    ShelfFixture f;
    f.m.eventWhisper = u"Standup in 5 min"_s;
    for (const bool expanded : {true, false}) {
        f.m.shelfExpanded = expanded;
        f.rest();
        const double rim = f.m.shapeHeight();
        const QRectF text = f.seen({-100, rim - 18, 200, 17}, [](QColor c) { return c.red() > 150 && c.blue() < 90; });
        EXPECT_TRUE(!text.isNull() && text.bottom() < rim - 4);
    }
    const auto chips = [&] { return f.seen({-140, 84, 110, 34}, [](QColor c) { return c.lightness() > 120; }); };
    EXPECT_FALSE(chips().isNull());
    f.m.withAnimation(Animation::spring(0.3, 0.7), [&] { f.m.dragNear = true; });
    f.rest();
    EXPECT_TRUE(chips().isNull());
    EXPECT_TRUE(f.isReddish(f.at(f.picture(), 8, 90))) << "the mouth in front";
    EXPECT_TRUE(f.seen({-130, 117, 70, 2}, [](QColor c) { return c.lightness() > 2; }).isNull()) << "cut off";
}

TEST(Shelf, CountsDownBySecondsAndNotBetweenThem) {
    ShelfFixture f(0, 0);
    f.shelf.addTimer(5);
    f.rest();
    const auto caption = [&] { return f.picture().copy(QRect(318, int((f.kRow + 10) * 2), 84, 26)); };
    QImage last = caption();
    int changes = 0;
    for (int i = 0; i < 100; ++i) {
        f.loop.advance(0.1);
        const QImage now = caption();
        changes += now != std::exchange(last, now);
    }
    EXPECT_EQ(changes, 10);
    f.loop.advance(0.7);
    EXPECT_NEAR(f.root.nextFrame() - f.clock.uptime(), 0.8, 0.01) << "the frame of the next second, and none before";
    // One that fell due shows zero until it is told that it has rung.
    f.loop.advance(300);
    const QImage zero = caption();
    f.loop.advance(1);
    EXPECT_EQ(caption(), zero);
    f.shelf.tickTimers();
    EXPECT_NE(caption(), zero);
}

TEST(Shelf, AnyNumberOfThingsFitsIntoTheBody) {
    const struct { int timers, files, more = 0; } cases[] = {{0, 4, 1}, {0, 7, 4}, {0, 3, 0}, {1, 4}, {3, 4}, {12, 4}};
    for (const auto& [timers, files, more] : cases) {
        ShelfFixture f(files);
        for (int i = 0; i < timers; ++i) f.shelf.addTimer(5);
        f.rest();
        for (int i = 0; i < f.things().size(); ++i) EXPECT_FALSE(f.chip(i).isNull()) << i << " of " << timers;
        for (const double side : {-156, 156}) EXPECT_FALSE(f.thingAt({180 + side, f.kRow}));
        EXPECT_EQ(f.pillSays(u"+%1"_s.arg(more), 130), more > 0) << files;
    }
}

TEST(Shelf, UnfoldsIntoRowsOfFiveAndFoldsWhenThePointerLeaves) {
    ShelfFixture f;
    const double second = f.kRow + NotchModel::kChipRow;
    f.m.shelfExpanded = true;
    f.rest();
    EXPECT_EQ(f.thingAt({180, second}), HeldThing(f.m.bites->last())) << "the sixth";
    f.root.hit({180, second + 28 + 9}).tap();
    EXPECT_FALSE(f.m.shelfExpanded) << "the pill below the rows";
    f.m.shelfExpanded = true;
    f.m.hovering = false;
    EXPECT_FALSE(f.m.shelfExpanded);
}

TEST(Shelf, EmojiInNamesKeepTheirColours) {
    ShelfFixture f(0, 0);
    for (const char* name : {"party 🎉", "🇩🇪", "plain"}) {
        f.m.items = QList{file(name)};
        f.rest();
        const auto coloured = [](QColor c) { return c.saturation() > 120 && c.value() > 90; };
        EXPECT_EQ(f.seen({-21, 123, 42, 12}, coloured).isNull(), name == std::string_view("plain")) << name;
    }
}

TEST(Shelf, AsleepOrAwayNothingCanBeTouched) {
    ShelfFixture f;
    const QPointF chip = f.chip(0), button = f.button(0);
    f.root.pointerMoved(chip);
    for (const auto& [member, away] : {std::pair(&NotchModel::hovering, false), std::pair(&NotchModel::asleep, true),
                                       std::pair(&NotchModel::dragNear, true), std::pair(&NotchModel::hidden, true)}) {
        f.m.*member = away;
        EXPECT_FALSE(f.thingAt(chip) || f.isButton(button));
        EXPECT_TRUE(f.m.hidden || f.traces.last().endsWith(QStringLiteral("false"))) << "nor is it lit";
        f.m.*member = !away;
        f.rest();
    }
}

TEST(Shelf, IconsThatComeLateAreShownAndThoseForNobodyForgotten) {
    ShelfFixture f;
    ASSERT_EQ(f.icons.asked.size(), 3);
    QImage red(64, 32, QImage::Format_RGB32);
    red.fill(Qt::red);
    f.icons.waiting[0](red);
    f.rest(0.3);
    const QRectF seen = f.seen(f.aroundFirst(20, 26), [](QColor c) { return c.red() > 200 && c.green() < 60; });
    EXPECT_NEAR(seen.width(), 30, 1);
    EXPECT_NEAR(seen.height(), 15, 1) << "as wide as the place, in its own proportion";
    f.m.items = QList<QUrl>();
    f.rest(1);
    f.m.bites = QList<Bite>();
    for (const auto& done : f.icons.waiting) done(red);
}

}  // namespace
