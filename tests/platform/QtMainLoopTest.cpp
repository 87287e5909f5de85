#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <algorithm>
#include <thread>

#include "platform/linux/QtMainLoop.h"

namespace {

/// Runs the loop until `reached` holds; false if that takes longer than anybody would wait.
bool runUntil(const std::function<bool()>& reached) {
    QElapsedTimer time;
    time.start();
    while (!reached() && time.elapsed() < 10000) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    return reached();
}

TEST(QtMainLoop, PostsFromAnyThreadInOrderToTheMainOne) {
    QtMainLoop loop;
    std::vector<int> got;
    bool wrongThread = false;
    const auto main = std::this_thread::get_id();
    const auto postAll = [&](int from) {
        for (int i = from; i < from + 500; ++i) {
            loop.post([&, i] {
                got.push_back(i);
                wrongThread |= std::this_thread::get_id() != main;
            });
        }
    };
    std::thread other([&] { postAll(1000); });
    postAll(0);
    other.join();
    EXPECT_TRUE(got.empty()) << "nothing runs inside post()";
    ASSERT_TRUE(runUntil([&] { return got.size() == 1000; }));
    EXPECT_FALSE(wrongThread);
    const auto ofOther = [](int i) { return i >= 1000; };
    std::stable_partition(got.begin(), got.end(), ofOther);
    EXPECT_TRUE(std::is_sorted(got.begin(), got.begin() + 500));
    EXPECT_TRUE(std::is_sorted(got.begin() + 500, got.end()));
}

TEST(QtMainLoop, CallsOnceOrAgainAndNotTooEarly) {
    QtMainLoop loop;
    QElapsedTimer time;
    time.start();
    std::vector<qint64> once;
    std::vector<qint64> fast;
    std::vector<qint64> coarse;
    const TimerHandle a = loop.after(0.03, [&] { once.push_back(time.elapsed()); });
    const TimerHandle b = loop.every(0.02, [&] { fast.push_back(time.elapsed()); });
    const TimerHandle c = loop.every(0.3, [&] { coarse.push_back(time.elapsed()); });
    ASSERT_TRUE(runUntil([&] { return coarse.size() == 2; }));
    ASSERT_EQ(once.size(), 1U);
    EXPECT_GE(once[0], 30);
    EXPECT_GE(fast.size(), 3U);
    for (size_t i = 0; i < fast.size(); ++i) EXPECT_GE(fast[i], 20 * qint64(i + 1)) << i;
    EXPECT_GE(coarse[0], 300 - 15) << "within five per cent";
    EXPECT_TRUE(a) << "a handle outlives its call";
}

TEST(QtMainLoop, DroppedTimersStaySilent) {
    QtMainLoop loop;
    int calls = 0;
    bool over = false;
    TimerHandle cancelled = loop.after(0.01, [&] { ++calls; });
    TimerHandle replaced = loop.every(0.01, [&] { ++calls; });
    {
        const TimerHandle scoped = loop.after(0, [&] { ++calls; });
    }
    cancelled.cancel();
    EXPECT_FALSE(cancelled);
    replaced = loop.after(0.05, [&] { over = true; });
    ASSERT_TRUE(runUntil([&] { return over; }));
    EXPECT_EQ(calls, 0);
}

/// What a callback holds must stay alive until it has returned, whatever it does to its own timer.
TEST(QtMainLoop, ACallbackMayDropOrReplaceItsOwnTimer) {
    QtMainLoop loop;
    const auto held = std::make_shared<int>(0);
    TimerHandle once;
    TimerHandle again;
    TimerHandle chain;
    const auto use = [&](const std::shared_ptr<int>& mine) {
        EXPECT_GE(mine.use_count(), 2);
        ++*mine;
    };
    once = loop.after(0.001, [&, mine = held] {
        once.cancel();
        use(mine);
    });
    again = loop.every(0.001, [&, mine = held] {
        again = TimerHandle();
        use(mine);
    });
    chain = loop.after(0.001, [&, mine = held] {
        chain = loop.after(0.02, [&, mine] {
            chain.cancel();
            use(mine);
        });
        use(mine);
    });
    ASSERT_TRUE(runUntil([&] { return *held == 4; }));
    ASSERT_TRUE(runUntil([&] { return held.use_count() == 1; })) << "what a dropped timer held is released";
    EXPECT_EQ(*held, 4);
}

TEST(QtMainLoop, WhatWasPostedDiesWithTheLoop) {
    int calls = 0;
    {
        QtMainLoop gone;
        gone.post([&] { ++calls; });
    }
    QtMainLoop loop;
    bool over = false;
    loop.post([&] { over = true; });
    ASSERT_TRUE(runUntil([&] { return over; }));
    EXPECT_EQ(calls, 0);
}

}  // namespace
