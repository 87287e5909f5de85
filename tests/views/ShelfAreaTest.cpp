#include <gtest/gtest.h>

#include "views/FilePicture.h"
#include "views/Picture.h"

namespace {

struct ShelfFixture : PictureFixture {
    ShelfFixture() {
        QList<QUrl> held;
        for (const char* name : {"a.png", "b.pdf", "c", "d.txt"})
            held.append(QUrl::fromLocalFile(QStringLiteral("/f/") + QLatin1String(name)));
        m.items = held;
        m.bites = QList{Bite::note(QStringLiteral("soup")), Bite::link(QUrl(QStringLiteral("https://a.example/b")))};
        m.hovering = true;
        rest();
    }

    /// Where chip `i` of the folded row has its middle, on the panel.
    QPointF chip(int i) {
        for (double x = 20; x < 340; x += 0.5) {
            const Chip* found = root.chipAt({x, kRow});
            if (found && found->thing() == things()[i]) return {x + Chip::width / 2, kRow};
        }
        return {};
    }
    QList<HeldThing> things() const {
        QList<HeldThing> all;
        for (const HeldTimer& timer : m.timers.get()) all.append(timer);
        for (const QUrl& file : m.items->mid(0, 3)) all.append(file);
        for (const Bite& bite : m.bites->mid(0, 2)) all.append(bite);
        return all;
    }
    QPointF removeButton(int i) { return chip(i) + QPointF(18, -20); }
    bool removeShown(int i) {
        rest(0.3);
        const QPointF middle = removeButton(i) - QPointF(180, 0);
        return bounds(picture(), QRectF(middle - QPointF(4, 4), QSizeF(8, 8)), isLight).has_value();
    }
    void tapAt(const QPointF& point) {
        root.press(point);
        root.tap(point);
    }

    static constexpr double kRow = 42 + 30 + 12 + 28;
};

TEST(Shelf, ClicksUseFilesAndBitesButNotTimers) {
    ShelfFixture f;
    f.shelf.addTimer(5);
    f.rest();
    for (int i = 0; i < 6; ++i) {
        f.tapAt(f.chip(i));
        f.rest();
    }
    EXPECT_EQ(f.used, f.things().mid(1));
    EXPECT_EQ(f.m.boopCount, 1) << "a tap on a countdown is one on the creature";
}

TEST(Shelf, APressBelongsToTheChipThatItBeganOn) {
    ShelfFixture f;
    const HeldThing second = f.things()[1];
    const QPointF place = f.chip(1);
    f.root.press(place);
    f.shelf.addTimer(5);  // which moves the row
    f.rest();
    ASSERT_NE(f.root.chipAt(place)->thing(), second);
    EXPECT_EQ(f.root.pressedChip()->thing(), second);
    f.root.tap(place);
    EXPECT_EQ(f.used, QList{second});

    f.root.press(f.chip(1));
    f.m.items = QList<QUrl>();
    f.rest();
    EXPECT_FALSE(f.root.pressedChip());
    f.root.tap(place);
    EXPECT_EQ(f.used.size(), 1) << "nobody can use what is gone";
}

TEST(Shelf, HoverFollowsChipsThatComeUnderAStillPointer) {
    PictureFixture f;
    f.m.items = QList{QUrl::fromLocalFile(QStringLiteral("/f/a.png"))};
    f.rest();
    f.m.withAnimation(commonSpring(), [&] { f.m.hovering = true; });
    f.root.pointerMoved(QPointF(180, 135));  // where the chip will be
    while (f.root.nextFrame() <= f.clock.uptime()) {
        f.picture();
        f.loop.advance(1 / 60.0);
    }
    EXPECT_EQ(f.traces, QStringList{QStringLiteral("chip a.png hover → true")});
}

TEST(Shelf, HoverIsTracedAndHeldForAMoment) {
    ShelfFixture f;
    f.root.pointerMoved(f.chip(0));
    EXPECT_TRUE(f.removeShown(0));
    f.root.pointerMoved(f.chip(1));
    EXPECT_EQ(f.traces,
              (QStringList{QStringLiteral("chip a.png hover → true"), QStringLiteral("chip a.png hover → false"),
                           QStringLiteral("chip b.pdf hover → true")}));
    f.loop.advance(0.4);
    EXPECT_TRUE(f.root.press(f.removeButton(0))) << "still there for who is on the way to it";
    f.root.release({100, 0});
    f.loop.advance(0.1);
    EXPECT_FALSE(f.root.press(f.removeButton(0)));
    f.root.pointerMoved(std::nullopt);
    f.loop.advance(0.5);
    EXPECT_FALSE(f.removeShown(1));
}

TEST(Shelf, TheRemoveButtonForgivesThirteenPoints) {
    const std::vector<std::pair<QPointF, bool>> cases{
        {{13, 13}, true}, {{-13.9, 0}, true}, {{14, 0}, false}, {{0, -14}, false}, {{20, 0}, false}};
    for (const auto& [way, removes] : cases) {
        ShelfFixture f;
        f.root.pointerMoved(f.chip(0));
        ASSERT_TRUE(f.root.press(f.removeButton(0)));
        f.root.release(way);
        EXPECT_EQ(f.removed.size(), removes ? 1 : 0) << way.x() << ' ' << way.y();
    }
    ShelfFixture f;
    EXPECT_FALSE(f.root.press(f.removeButton(0))) << "it is not there without the pointer";
    f.root.pointerMoved(f.chip(0));
    EXPECT_FALSE(f.root.press(f.removeButton(0) + QPointF(0, 13))) << "beside it";
}

TEST(Shelf, AHoveredChipGrowsAndGlows) {
    ShelfFixture f;
    const auto glow = [&](int i) {
        const QPointF middle = f.chip(i) - QPointF(180, 0);
        f.rest(0.5);
        return f.bounds(f.picture(), QRectF(middle - QPointF(31, 29.5), QSizeF(62, 60)),
                        [](QColor c) { return c.red() > 60 && c.blue() < 30; });
    };
    f.m.items = QList<QUrl>();  // notes have no orange of their own
    f.rest();
    EXPECT_FALSE(glow(0));
    f.root.pointerMoved(f.chip(0));
    const auto rim = glow(0);
    ASSERT_TRUE(rim);
    EXPECT_NEAR(rim->width(), Chip::width * 1.07, 1.1);
    EXPECT_NEAR(rim->height(), Chip::height * 1.07, 1.1);
    for (const QPointF& way : {QPointF(26.5, 0), QPointF(0, 28.7)})
        EXPECT_TRUE(f.root.chipAt(f.chip(0) + way)) << "it answers where it is lit";
}

TEST(Shelf, StepsBackBehindTheOpenMouth) {
    ShelfFixture f;
    const auto bright = [&] {
        return f.bounds(f.picture(), {-140, 84, 110, 34}, [](QColor c) { return c.lightness() > 120; }).has_value();
    };
    EXPECT_TRUE(bright());
    f.m.withAnimation(Animation::spring(0.3, 0.7), [&] { f.m.dragNear = true; });
    f.rest();
    EXPECT_FALSE(bright());
    const QColor throat = f.at(f.picture(), 8, 90);
    EXPECT_GT(throat.red(), throat.green() * 2) << "the mouth in front";
    EXPECT_FALSE(f.bounds(f.picture(), {-130, 117, 70, 2}, [](QColor c) { return c.lightness() > 2; })) << "cut off";
}

TEST(Shelf, WhispersAboveTheRim) {
    ShelfFixture f;
    f.m.eventWhisper = QStringLiteral("Standup in 5 min");
    for (const bool expanded : {false, true}) {
        f.m.shelfExpanded = expanded;
        f.rest();
        const double rim = f.m.shapeHeight();
        const auto text =
            f.bounds(f.picture(), {-100, rim - 18, 200, 17}, [](QColor c) { return c.red() > 150 && c.blue() < 90; });
        ASSERT_TRUE(text);
        EXPECT_LT(text->bottom(), rim - 4);
    }
}

TEST(Shelf, CountsDownBySecondsAndNotBetweenThem) {
    ShelfFixture f;
    f.m.items = QList<QUrl>();
    f.m.bites = QList<Bite>();
    f.shelf.addTimer(5);
    f.rest();
    const QRectF caption(-21, ShelfFixture::kRow + 10, 42, 13);
    const auto picture = [&] {
        return f.picture().copy(QRect(int((180 + caption.left()) * 2), int(caption.top() * 2), 84, 26));
    };
    QImage before = picture();
    int changes = 0;
    for (int i = 0; i < 100; ++i) {
        f.loop.advance(0.1);
        const QImage now = picture();
        changes += now != before;
        before = now;
    }
    EXPECT_EQ(changes, 10);
    f.loop.advance(0.7);
    EXPECT_NEAR(f.root.nextFrame() - f.clock.uptime(), 0.8, 0.01) << "the frame of the next second, and none before";
    // One that fell due shows zero until it is told that it has rung.
    f.loop.advance(300);
    const QImage zero = picture();
    f.loop.advance(1);
    EXPECT_EQ(picture(), zero);
    f.shelf.tickTimers();
    EXPECT_NE(picture(), zero);
}

TEST(Shelf, AnyNumberOfThingsFitsIntoTheBody) {
    for (const int timers : {0, 1, 3, 12}) {
        ShelfFixture f;
        for (int i = 0; i < timers; ++i) f.shelf.addTimer(5);
        f.rest();
        for (int i = 0; i < f.things().size(); ++i) EXPECT_FALSE(f.chip(i).isNull()) << i << " of " << timers;
        for (const double side : {-156, 156}) EXPECT_FALSE(f.root.chipAt({180 + side, ShelfFixture::kRow}));
    }
}

TEST(Shelf, UnfoldsIntoRowsOfFive) {
    ShelfFixture f;
    f.m.shelfExpanded = true;
    f.rest();
    const double second = ShelfFixture::kRow + 56;
    const Chip* sixth = f.root.chipAt({180, second});
    ASSERT_TRUE(sixth);
    EXPECT_EQ(sixth->thing(), HeldThing(f.m.bites->last()));
    f.m.shelfExpanded = false;
    f.rest();
    f.m.withAnimation(Animation::spring(0.32, 0.85), [&] { f.m.shelfExpanded = true; });
    f.loop.advance(0.05);
    f.tapAt({180, second + 28 + 9});
    EXPECT_TRUE(f.m.shelfExpanded) << "the pill is on its way there";
    f.rest();
    f.tapAt({180, second + 28 + 9});
    EXPECT_FALSE(f.m.shelfExpanded) << "the pill below the rows";
}

TEST(Shelf, FoldsWhenThePointerLeavesWhateverIsShown) {
    ShelfFixture f;
    const std::function<void(NotchModel&)> covers[]{[](NotchModel& m) { m.hidden = true; },
                                                    [](NotchModel& m) { m.pickToy(Toy::weather); }};
    for (const auto& cover : covers) {
        f.m.hovering = f.m.shelfExpanded = true;
        cover(f.m);
        f.rest();
        EXPECT_TRUE(f.m.shelfExpanded);
        f.m.hovering = false;
        EXPECT_FALSE(f.m.shelfExpanded);
    }
}

TEST(Shelf, EmojiInNamesKeepTheirColours) {
    PictureFixture f;
    for (const char* name : {"party 🎉", "🇩🇪", "plain"}) {
        f.m.items = QList{QUrl::fromLocalFile(QStringLiteral("/f/") + QString::fromUtf8(name))};
        f.m.hovering = true;
        f.rest();
        const QRectF caption(-21, ShelfFixture::kRow + 11, 42, 12);
        const auto coloured =
            f.bounds(f.picture(), caption, [](QColor c) { return c.saturation() > 120 && c.value() > 90; });
        EXPECT_EQ(coloured.has_value(), name != std::string_view("plain")) << name;
    }
}

TEST(Shelf, AnEndlessLinkIsShownByItsEnds) {
    const QString address = QStringLiteral("data:text/plain,") + QString(1000000, u'A') + QStringLiteral("zyx");
    const auto pictureOf = [](const QString& text) {
        PictureFixture f;
        f.m.bites = QList{Bite::link(QUrl(text))};
        f.m.hovering = true;
        f.rest();
        return f.picture();
    };
    EXPECT_EQ(pictureOf(address), pictureOf(address.left(100) + address.right(100)));
}

TEST(Shelf, AsleepOrAwayNothingCanBeTouched) {
    ShelfFixture f;
    const QPointF place = f.chip(0);
    f.root.pointerMoved(place);
    f.m.hovering = false;
    EXPECT_FALSE(f.root.chipAt(place) || f.root.press(f.removeButton(0)));
    EXPECT_TRUE(f.traces.last().endsWith(QStringLiteral("false")));
    f.m.hovering = true;
    f.m.asleep = true;
    EXPECT_FALSE(f.root.chipAt(place));
    f.m.asleep = false;
    f.m.hidden = true;
    EXPECT_FALSE(f.root.chipAt(place));
}

TEST(Shelf, IconsThatComeLateAreShownAndThoseForNobodyForgotten) {
    ShelfFixture f;
    ASSERT_EQ(f.icons.asked.size(), 3);
    QImage red(64, 32, QImage::Format_RGB32);
    red.fill(Qt::red);
    f.icons.waiting[0](red);
    const QPointF middle = f.chip(0) - QPointF(180, 6);
    f.rest(0.3);
    const auto seen = f.bounds(f.picture(), QRectF(middle - QPointF(20, 20), QSizeF(40, 40)),
                               [](QColor c) { return c.red() > 200 && c.green() < 60; });
    ASSERT_TRUE(seen);
    EXPECT_NEAR(seen->width(), 30, 1);
    EXPECT_NEAR(seen->height(), 15, 1) << "as wide as the place, in its own proportion";
    f.m.items = QList<QUrl>();
    f.rest(1);
    f.m.bites = QList<Bite>();
    for (const auto& done : f.icons.waiting) done(red);
}

}  // namespace
