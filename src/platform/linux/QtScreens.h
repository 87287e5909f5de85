#pragma once

#include <QObject>
#include <optional>

#include "platform/MainLoop.h"
#include "platform/Preferences.h"
#include "platform/Screens.h"

class QScreen;

/// The screens as Qt knows them. A camera housing is known from the panel's resolution, or from the user's preference
/// "glimmet.notch": "WIDTHxHEIGHT" in points puts one on the built-in screen or, where there is none, on the one that
/// was the main screen then, whose name is kept in "glimmet.notchScreen"; "none" says that there is none anywhere. Main
/// thread only; needs a QGuiApplication; the references must outlive the object.
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
