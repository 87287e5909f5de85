#pragma once

#include <QObject>
#include <optional>

#include "platform/MainLoop.h"
#include "platform/Preferences.h"
#include "platform/Screens.h"

class QScreen;

/// Qt's screens. A camera housing is recognised by the panel's resolution, or set by the user's preference
/// "glimmet.notch": "WIDTHxHEIGHT" in points puts one on the built-in screen or, without one, on the main screen at
/// that time, whose name is stored in "glimmet.notchScreen"; "none" disables it. Main thread only; needs a
/// QGuiApplication; the references must outlive the object.
class QtScreens : public Screens {
 public:
    QtScreens(Preferences& preferences, MainLoop& loop);

    QList<Screen> screens() const override;

 private:
    void watch(QScreen* screen);
    void changed();
    const QScreen* housingScreen() const;
    std::optional<QSizeF> housing(const QScreen& screen) const;

    Preferences& preferences_;
    MainLoop& loop_;
    QObject context_;  // ends the connections
    TimerHandle announcement_;
};
