#pragma once

#include <QList>
#include <functional>

#include "app/PopupMenu.h"
#include "creature/NotchModel.h"

class Preferences;
class Workspace;

/// What the user commands from the popup menu. Main thread only; the references must outlive it.
class Commands {
 public:
    Commands(NotchModel& model, Clock& clock, Preferences& preferences, Workspace& workspace);

    /// The popup menu for the present state.
    QList<MenuItem> menu();

    void pick(const QString& rawValue);
    void holdTimer(int minutes);
    void shh();
    void wakeUp();
    void openSite();
    void toggleHidden();

    /// Asks for an orderly end.
    std::function<void()> quit;

 private:
    MenuItem timerItem();
    MenuItem quietItem();
    MenuItem updateItem();

    NotchModel& m_;
    Clock& clock_;
    Preferences& preferences_;
    Workspace& workspace_;
};
