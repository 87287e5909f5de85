#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <thread>

#include "platform/linux/ThreadQueues.h"

namespace {

TEST(ThreadQueues, TheSerialOneKeepsTheOrderAndItsEndWaitsForAll) {
    std::vector<int> got;
    std::atomic<int> atOnce = 0;
    bool overlapped = false;
    std::promise<void> gate;
    const auto main = std::this_thread::get_id();
    {
        ThreadSerialQueue queue;
        queue.run([&] { gate.get_future().wait(); });
        for (int i = 0; i < 200; ++i) {
            queue.run([&, i] {
                overlapped |= ++atOnce != 1 || std::this_thread::get_id() == main;
                got.push_back(i);
                --atOnce;
            });
        }
        EXPECT_TRUE(got.empty());
        gate.set_value();
    }
    EXPECT_EQ(got.size(), 200U) << "jobs that had not begun still run";
    EXPECT_TRUE(std::is_sorted(got.begin(), got.end()));
    EXPECT_FALSE(overlapped);
}

TEST(ThreadQueues, TheOtherOneRunsJobsSideBySide) {
    if (QThread::idealThreadCount() < 2) GTEST_SKIP() << "needs two processors";
    std::promise<void> begun[2];
    std::atomic<int> met = 0;
    {
        ThreadQueue queue;
        for (int i = 0; i < 2; ++i) {
            queue.run([&, i] {
                begun[i].set_value();
                met += begun[1 - i].get_future().wait_for(std::chrono::seconds(10)) == std::future_status::ready;
            });
        }
    }
    EXPECT_EQ(met, 2);
}

}  // namespace
