#pragma once

#include <QList>
#include <functional>

#include "app/PopupMenu.h"
#include "app/Switch.h"
#include "creature/NotchModel.h"

class Preferences;
class Shelf;
class Workspace;

/// The commands of the popup menu. Main thread only; the references must outlive it.
class Commands {
 public:
    Commands(NotchModel& model, Shelf& shelf, Clock& clock, Preferences& preferences, Workspace& workspace,
             QList<Switch> switches);

    /// Starts the parts that are switched on.
    void startSwitches();
    /// The popup menu for the current state.
    QList<MenuItem> menu();

    void pick(const QString& rawValue);
    void holdTimer(int minutes);
    void shh();
    void wakeUp();
    void openSite();
    void toggleHidden();
    void flip(const Switch& flipped);

    /// Requests an orderly exit.
    std::function<void()> quit;

 private:
    MenuItem timerItem();
    MenuItem quietItem();
    MenuItem switchItem(const Switch& shown);
    MenuItem updateItem();

    NotchModel& model_;
    Shelf& shelf_;
    Clock& clock_;
    Preferences& preferences_;
    Workspace& workspace_;
    QList<Switch> switches_;
};
