#include <gtest/gtest.h>

#include <QRandomGenerator>

#include "views/Picture.h"

namespace {

/// The panel as the program keeps it: each frame clears and paints only what differs from the frame before.
struct Screen {
    explicit Screen(double pixelsPerPoint)
        : ratio(pixelsPerPoint), image((QSizeF(360, 230) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied) {
        image.setDevicePixelRatio(ratio);
        image.fill(Qt::transparent);
    }
    void draw(const DisplayList& next, const QRegion& damage) {
        QPainter painter(&image);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        for (const QRect& part : damage) painter.fillRect(part, Qt::transparent);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        painter.setClipRegion(damage);
        Canvas canvas(painter, caches, ratio);
        next.paint(canvas, damage);
    }
    double ratio;
    QImage image;
    PictureCaches caches;
};

const QRegion kPanel(0, 0, 360, 230);

struct Step {
    const char* name;
    std::function<void(NotchModel&)> change;
};

void spring(NotchModel& m, const std::function<void()>& change) {
    m.withAnimation(commonSpring(), change);
}

const std::vector<Step> kLife{
    {"looks", [](NotchModel& m) { m.cursor = QPointF(100, 300); }},
    {"opens", [](NotchModel& m) { spring(m, [&] { m.hovering = true; }); }},
    {"boops", [](NotchModel& m) { ++m.boopCount; }},
    {"closes at once", [](NotchModel& m) { spring(m, [&] { m.hovering = false; }); }},
    {"is startled", [](NotchModel& m) { ++m.startleCount; }},
    {"charges", [](NotchModel& m) { m.charging = true; }},
    {"holds", [](NotchModel& m) { spring(m, [&] {
                                      m.timers = QList{HeldTimer{QUuid::createUuid(), {0}, 5}};
                                  }); }},
    {"gets a drag", [](NotchModel& m) { spring(m, [&] { m.dragNear = true; }); }},
    {"and loses it", [](NotchModel& m) { spring(m, [&] { m.dragNear = false; }); }},
    {"camera", [](NotchModel& m) { m.withAnimation(Animation::easeInOut(0.45), [&] { m.cameraInUse = true; }); }},
    {"is told of a meeting", [](NotchModel& m) { m.eventWhisper = QStringLiteral("soon"); }},  // recolours the glyph
    {"full disk", [](NotchModel& m) { m.diskFull = true; }},
    {"sleeps", [](NotchModel& m) { m.withAnimation(Animation::easeInOut(0.7), [&] { m.asleep = true; }); }},
    {"wakes", [](NotchModel& m) { m.markActivity(0); }},
    {"downloads", [](NotchModel& m) { m.downloading = true; }},
    {"hides", [](NotchModel& m) { spring(m, [&] { m.hidden = true; }); }},
    {"comes back", [](NotchModel& m) { spring(m, [&] { m.hidden = false; }); }},
    {"weather", [](NotchModel& m) { spring(m, [&] { m.toy = Toy::weather; }); }},
    {"critter", [](NotchModel& m) { spring(m, [&] { m.toy = Toy::critter; }); }},
};

TEST(Damage, OfALookIsTheEyes) {
    PictureFixture f;
    f.rest();
    DisplayList before, same, moved;
    f.root.compose(before);
    f.root.compose(same);
    EXPECT_TRUE(before.changesTo(same).isEmpty());
    f.m.cursor = f.m.cursor.get() + QPointF(300, 0);
    f.root.compose(moved);
    const QSize eyes = before.changesTo(moved).boundingRect().size();
    EXPECT_TRUE(!eyes.isEmpty() && eyes.width() <= 56 && eyes.height() <= 24);
}

TEST(Damage, PaintingOnlyWhatChangedLeavesTheSamePictureAsPaintingAll) {
    for (const double ratio : {1.0, 1.5, 2.0}) {
        PictureFixture f;
        QRandomGenerator random(1);
        Screen kept(ratio);
        DisplayList shown;
        f.root.compose(shown);
        kept.draw(shown, kPanel);
        for (const Step& step : kLife) {
            step.change(f.m);
            for (int frame = 0; frame < 24; ++frame) {
                // Frames are never quite on time.
                f.loop.advance(frame < 12 ? (0.7 + 0.6 * random.generateDouble()) / 60 : 0.11);
                DisplayList next;
                f.root.compose(next);
                kept.draw(next, shown.changesTo(next) & kPanel);
                shown = std::move(next);
                Screen fresh(ratio);
                fresh.draw(shown, kPanel);
                // Clipping to a region and to an edge at once rounds a little differently than to the edge alone.
                ASSERT_LE(difference(kept.image, fresh.image), 8)
                    << step.name << ", frame " << frame << " at ratio " << ratio;
            }
            Screen fresh(ratio);
            fresh.draw(shown, kPanel);
            kept.draw(shown, kPanel);
            EXPECT_EQ(difference(kept.image, fresh.image), 0)
                << "after " << step.name << ", what was kept from the way there is in the picture at ratio " << ratio;
        }
    }
}

}  // namespace
