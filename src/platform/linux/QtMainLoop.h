#pragma once

#include <QObject>

#include "platform/MainLoop.h"

/// The main loop over Qt's event loop. Created on the main thread; needs a QCoreApplication to run.
class QtMainLoop : public MainLoop {
 public:
    void post(Callback callback) override;
    TimerHandle after(double seconds, Callback callback) override;
    TimerHandle every(double seconds, Callback callback) override;

 private:
    QObject receiver_;
};
