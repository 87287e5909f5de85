#include <QFile>
#include <algorithm>

#include "desktop/DesktopTest.h"

namespace {

class Rest : public DesktopTest {
 protected:
    /// Waits until it looks like `wanted`, but for parts that breathing moves by less than a pixel.
    testing::AssertionResult waitForPicture(const QImage& wanted);
    /// What the panel shows while nothing in it moves but its breath.
    QImage calm(Glimmet& glimmet, const std::function<void()>& beforehand);
    void excite();
};

/// Pixels of `seen` whose brightness is nowhere in `wanted` within one pixel of that place.
int strays(const QImage& wanted, const QImage& seen) {
    constexpr int kNoise = 24;
    int count = 0;
    for (int y = 0; y < seen.height(); ++y) {
        for (int x = 0; x < seen.width(); ++x) {
            int darkest = 255, brightest = 0;
            for (int ny = std::max(y - 1, 0); ny <= std::min(y + 1, wanted.height() - 1); ++ny) {
                for (int nx = std::max(x - 1, 0); nx <= std::min(x + 1, wanted.width() - 1); ++nx) {
                    const int there = qGray(wanted.pixel(nx, ny));
                    darkest = std::min(darkest, there);
                    brightest = std::max(brightest, there);
                }
            }
            const int here = qGray(seen.pixel(x, y));
            count += here < darkest - kNoise || here > brightest + kNoise;
        }
    }
    return count;
}

testing::AssertionResult Rest::waitForPicture(const QImage& wanted) {
    int stray = 0;
    const auto result = waitFor([&] { return (stray = strays(wanted, panelPicture())) == 0; });
    return result ? result : testing::AssertionFailure() << stray << " pixels are not as they should be";
}

QImage Rest::calm(Glimmet& glimmet, const std::function<void()>& beforehand) {
    if (!glimmet.started()) return {};
    beforehand();
    QImage last = panelPicture();
    const bool still = bool(waitFor([&] {
        letPass(0.1);
        const QImage before = std::exchange(last, panelPicture());
        const auto face = faceIn(last);
        return face && face->left.open() && strays(before, last) == 0;
    }));
    return still ? last : QImage();
}

void Rest::excite() {
    for (int times = 0; times < 2; ++times) {
        session.moveTo(kOnNotch);
        ASSERT_TRUE(waitForBody(214, 108));
        session.moveTo(kFar);
        // Back before it is closed, so that a spring is turned round in flight.
        ASSERT_TRUE(waitFor([&] { return bodyIn(picture())->bottom < 95; }));
    }
    session.moveTo(kOnNotch);
    ASSERT_TRUE(waitForBody(214, 108));
    session.click(kOnNotch);
    ASSERT_TRUE(waitFor([&] { return confettiFlies(); }));
    ASSERT_TRUE(waitForBody(214, 108));
    session.press(1);
    session.glide(kOnNotch, kOnNotch + QPoint(60, 0), 10, 10);
    session.glide(kOnNotch + QPoint(60, 0), kOnNotch, 10, 10);
    session.release(1);
    ASSERT_TRUE(waitFor([&] { return !confettiFlies(); }));
    ASSERT_TRUE(waitForBody(214, 108));
}

// Only what changes is painted again, so whatever is forgotten stays on the screen.
TEST_F(Rest, AfterExcitementNothingIsLeftOnTheScreen) {
    const auto open = [&] { session.glide(kFar, {790, 50}, 20, 10); };
    const auto closed = [&] { session.glide({790, 50}, {1300, 600}, 20, 10); };
    QImage freshOpen, freshClosed;
    {
        Glimmet fresh(session, home);
        freshOpen = calm(fresh, [&] {
            open();
            ASSERT_TRUE(waitForBody(214, 108));
        });
        freshClosed = calm(fresh, [&] {
            closed();
            ASSERT_TRUE(waitForBody(185, 58));
        });
        ASSERT_FALSE(freshOpen.isNull() || freshClosed.isNull());
        ASSERT_GT(strays(freshOpen, freshClosed), 1000);
    }
    Glimmet glimmet(session, home);
    ASSERT_TRUE(glimmet.started());
    ASSERT_NO_FATAL_FAILURE(excite());
    open();
    EXPECT_TRUE(waitForPicture(freshOpen));
    closed();
    EXPECT_TRUE(waitForPicture(freshClosed));
}

/// How often the program's main thread went to sleep so far.
int timesAsleep(qint64 pid) {
    QFile status(QStringLiteral("/proc/%1/status").arg(pid));
    if (!status.open(QIODevice::ReadOnly)) return -1;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("voluntary_ctxt_switches:")) return line.mid(line.indexOf(':') + 1).trimmed().toInt();
    }
    return -1;
}

// Breathing takes four pictures a second and blinking a few more; anything that keeps moving unseen takes sixty.
TEST_F(Rest, KeepsTheMachineAsleep) {
    Glimmet glimmet(session, home);
    ASSERT_TRUE(glimmet.started());
    ASSERT_NO_FATAL_FAILURE(excite());
    session.moveTo(kFar);
    ASSERT_TRUE(waitForBody(185, 58));
    letPass(1);  // the springs come to rest long after they look like it

    constexpr int kSeconds = 4;
    const int before = timesAsleep(glimmet.pid());
    ASSERT_GE(before, 0);
    letPass(kSeconds);
    const int wakeUps = timesAsleep(glimmet.pid()) - before;
    RecordProperty("wake_ups_per_second", wakeUps / kSeconds);
    EXPECT_GT(wakeUps, 0) << "it does not breathe";
    EXPECT_LT(wakeUps, 30 * kSeconds);
}

}  // namespace
