#pragma once

#include <QThreadPool>

#include "platform/BackgroundQueue.h"

/// Several threads, which exist only while there is work; some may block for long.
class ThreadQueue : public BackgroundQueue {
 public:
    explicit ThreadQueue(int maxThreads = 8) { pool_.setMaxThreadCount(maxThreads); }
    void run(std::function<void()> job) override { pool_.start(std::move(job)); }

 private:
    QThreadPool pool_;
};

/// One thread, which exists only while there is work.
class ThreadSerialQueue : public SerialQueue {
 public:
    ThreadSerialQueue() {
        pool_.setMaxThreadCount(1);
        pool_.setExpiryTimeout(1000);
    }
    void run(std::function<void()> job) override { pool_.start(std::move(job)); }

 private:
    QThreadPool pool_;
};
