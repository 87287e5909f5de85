#pragma once

#include "creature/NotchModel.h"
#include "platform/MainLoop.h"

class DropIntake;
class Shelf;

/// The shelf's self-tests: drop files as another program would, or chew one, and report what the shelf then holds on
/// standard error. They stop when the object is destroyed. Main thread only.
class ShelfSelfTest {
 public:
    ShelfSelfTest(const NotchModel& model, Shelf& shelf, MainLoop& loop, DropIntake& drops);

    /// Drops `paths`, separated by commas, a second later.
    void startDrop(const QString& paths);
    /// `request` is a path, optionally followed by a comma and "jpeg" (the default), "png", "smaller" or "read".
    void startChew(const QString& request);

 private:
    void reportDrop();
    void chew(const QUrl& file, const QString& kind);
    void reportChew();
    QString heldNames() const;

    const NotchModel& model_;
    Shelf& shelf_;
    MainLoop& loop_;
    DropIntake& drops_;
    TimerHandle drop_, chew_;
};
