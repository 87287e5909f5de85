#pragma once

#include <QStringList>

#include "creature/NotchModel.h"
#include "platform/MainLoop.h"

class DropIntake;
class Shelf;

/// The shelf's self-tests: drop files as a program would, or chew one, and report on standard error what the shelf
/// holds then. They run for as long as the object lives. Main thread.
class ShelfSelfTest {
 public:
    ShelfSelfTest(const NotchModel& model, Shelf& shelf, MainLoop& loop, DropIntake& drops);

    /// `paths` are separated by commas. The drop comes a second later.
    void startDrop(const QString& paths);
    /// `request` is a path, and after a comma "jpeg" (as when absent), "png", "smaller" or "read".
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
