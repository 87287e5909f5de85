#pragma once

#include <QImage>
#include <QPainter>
#include <cmath>
#include <functional>
#include <optional>

#include "support/Creature.h"
#include "views/RootView.h"

/// The largest difference of a channel between two pictures.
inline int difference(const QImage& a, const QImage& b) {
    int most = 0;
    for (int y = 0; y < a.height(); ++y) {
        const uchar *p = a.constScanLine(y), *q = b.constScanLine(y);
        for (int x = 0; x < a.width() * 4; ++x) most = std::max(most, std::abs(p[x] - q[x]));
    }
    return most;
}

/// What `draw` draws on `ground`, of this size in points.
inline QImage drawn(QSizeF size, double ratio, const QColor& ground, PictureCaches& caches,
                    const std::function<void(Canvas&, QPainter&)>& draw) {
    QImage image((size * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(ground);
    QPainter painter(&image);
    Canvas canvas(painter, caches, ratio);
    draw(canvas, painter);
    return image;
}

/// A creature whose panel can be looked at: drawn over mid grey at two pixels per point, so that black body, light eyes
/// and the ground can all be told apart. Places are points from the top centre of the panel.
struct PictureFixture : CreatureFixture {
    static constexpr int kRatio = 2;

    MemoryIcons icons;
    QStringList traces;
    int taps = 0;  // on the creature
    QList<HeldThing> used, removed, menus;
    QStringList musicCommands;
    RootView root{m,
                  {.icons = icons,
                   .trace = [this](const QString& line) { traces.append(line); },
                   .notchTapped = [this] { ++taps; },
                   .use = [this](const HeldThing& thing) { used.append(thing); },
                   .remove = [this](const HeldThing& thing) { removed.append(thing); },
                   .menu = [this](const HeldThing& thing) { return menus.append(thing), QList<MenuItem>(); },
                   .onMusicCommand = [this](const QString& word) { musicCommands.append(word); }},
                  clock,
                  loop,
                  [] { return 0.5; }};
    PictureCaches caches;

    QImage picture() {
        DisplayList list;
        root.compose(list);
        return drawn({RootView::kPanelWidth, RootView::kPanelHeight}, kRatio, QColor(128, 128, 128), caches,
                     [&](Canvas& canvas, QPainter&) { list.paint(canvas, QRegion(0, 0, 360, 230)); });
    }

    static QColor at(const QImage& image, double x, double y) {
        return image.pixelColor(int(std::floor((RootView::kPanelWidth / 2 + x) * kRatio)), int(std::floor(y * kRatio)));
    }

    /// The smallest rectangle, in points, around all pixels inside `area` that `test` accepts; null for none.
    static QRectF bounds(const QImage& image, const QRectF& area, const std::function<bool(QColor)>& test) {
        QRectF found;
        constexpr double step = 1.0 / kRatio;
        for (double y = area.top(); y < area.bottom(); y += step)
            for (double x = area.left(); x < area.right(); x += step)
                if (test(at(image, x, y))) found |= QRectF(x, y, step, step);
        return found;
    }
    /// The same in the present picture.
    QRectF seen(const QRectF& area, const std::function<bool(QColor)>& test) { return bounds(picture(), area, test); }

    /// Lets everything that moves come to rest, at a moment when the breath is fully out and the scale 1.
    void rest(double seconds = 3) {
        loop.advance(seconds);
        // The breathing ticks every quarter of a second; one tick falls on such a moment.
        const double period = 3.4;
        loop.advance(0.25 - std::fmod(clock.uptime() - 1000, 0.25));
        clock.setNow({period * std::ceil(clock.now().seconds / period) - 0.25});
        loop.advance(0.25);
    }

    static bool isLight(QColor c) { return c.lightness() > 140; }
    static bool isDark(QColor c) { return c.lightness() < 60; }
    static bool isOrange(QColor c) { return c.red() > 150 && c.blue() < 100; }
    static bool isReddish(QColor c) { return c.red() > c.green() * 2 && c.red() > 60; }
};
