// How long one frame takes: composing the pieces of the picture and painting those that changed.

#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include "support/Creature.h"
#include "views/RootView.h"

namespace {

/// A panel that is drawn into memory as the program draws it, one frame per call.
class Panel {
 public:
    explicit Panel(int ratio) : ratio_(ratio), image_(360 * ratio, 230 * ratio, QImage::Format_ARGB32_Premultiplied) {
        image_.setDevicePixelRatio(ratio);
        f.loop.advance(1);
    }

    /// Draws what has changed since the last frame; returns the share of the panel that was painted.
    void frame() {
        DisplayList next;
        root.compose(next);
        const QRegion damage = shown_.changesTo(next);
        if (!damage.isEmpty()) {
            QPainter painter(&image_);
            painter.setClipRegion(damage);
            painter.setCompositionMode(QPainter::CompositionMode_Source);
            painter.fillRect(damage.boundingRect(), Qt::transparent);
            painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
            Canvas canvas(painter, caches_, ratio_);
            next.paint(canvas, damage);
        }
        shown_ = std::move(next);
    }

    CreatureFixture f;
    MemoryIcons icons;
    ViewPorts ports{icons, {}, {}, {}, {}, {}, {}, false};
    RootView root{f.m, ports, f.clock, f.loop, [] { return 0.5; }};

 private:
    int ratio_;
    QImage image_;
    PictureCaches caches_;
    DisplayList shown_;
};

/// A quarter of a second passes between frames, so each is a new breath.
void restingFace(benchmark::State& state) {
    Panel panel(int(state.range(0)));
    for (auto _ : state) {
        panel.f.loop.advance(0.25);
        panel.frame();
    }
}

/// The same with five things held.
void restingFaceHolding(benchmark::State& state) {
    Panel panel(int(state.range(0)));
    for (int i = 0; i < 5; ++i) panel.f.shelf.addBites({Bite::note(QString::number(i))});
    for (auto _ : state) {
        panel.f.loop.advance(0.25);
        panel.frame();
    }
}

/// The pointer moves over the open face: only the eyes change.
void openFaceLooking(benchmark::State& state) {
    Panel panel(int(state.range(0)));
    panel.f.m.hovering = true;
    panel.frame();
    double x = 0;
    for (auto _ : state) {
        x = x > 400 ? -400 : x + 7;
        panel.f.m.cursor = QPointF(756 + x, 700);
        panel.frame();
    }
}

/// Hovering in and out in flight: every frame has a new shape and so a new shadow.
void opening(benchmark::State& state) {
    Panel panel(int(state.range(0)));
    int frame = 0;
    for (auto _ : state) {
        if (frame++ % 20 == 0)
            panel.f.m.withAnimation(commonSpring(), [&] { panel.f.m.hovering = !panel.f.m.hovering; });
        panel.f.loop.advance(1.0 / 60);
        panel.frame();
    }
}

/// A squash, its wobble and a burst of sparks, over and over.
void boopWithConfetti(benchmark::State& state) {
    Panel panel(int(state.range(0)));
    panel.f.m.hovering = true;
    int frame = 0;
    for (auto _ : state) {
        if (frame++ % 40 == 0) ++panel.f.m.boopCount;
        panel.f.loop.advance(1.0 / 60);
        panel.frame();
    }
}

BENCHMARK(restingFace)->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);
BENCHMARK(restingFaceHolding)->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);
BENCHMARK(openFaceLooking)->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);
BENCHMARK(opening)->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);
BENCHMARK(boopWithConfetti)->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
