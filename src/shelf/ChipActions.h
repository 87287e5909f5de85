#pragma once

#include <QList>
#include <functional>

#include "creature/HeldThing.h"
#include "platform/MenuItem.h"
#include "shelf/Shelf.h"

class Sharing;
class Workspace;

/// The actions on a thing on the shelf. Main thread only; the references must outlive it.
class ChipActions {
 public:
    ChipActions(NotchModel& model, Shelf& shelf, Workspace& workspace, Sharing& sharing)
        : model_(model), shelf_(shelf), workspace_(workspace), sharing_(sharing) {}

    /// Shows a menu of ways to share something; called some time after the user asked for it.
    std::function<void(const QList<MenuItem>&)> showSharing;

    /// The chip's context menu.
    QList<MenuItem> menu(const HeldThing& thing);
    /// What a click on the chip does: opens a file or a link, copies a note.
    void use(const HeldThing& thing);
    /// Takes it off the shelf. A file stays where it is on the disk.
    void remove(const HeldThing& thing);

 private:
    QList<MenuItem> fileMenu(const QUrl& file);
    QList<MenuItem> biteMenu(const Bite& bite);
    MenuItem shareItem(const QUrl& thing);
    MenuItem removeItem(const HeldThing& thing);

    NotchModel& model_;
    Shelf& shelf_;
    Workspace& workspace_;
    Sharing& sharing_;
};
