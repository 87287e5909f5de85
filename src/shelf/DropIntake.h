#pragma once

#include <QList>
#include <QPointF>
#include <QString>
#include <QUrl>
#include <functional>
#include <memory>

#include "creature/NotchModel.h"
#include "platform/BackgroundJobs.h"
#include "platform/Drop.h"

class DragPasteboard;
class Shelf;

/// Sees what other programs drag towards the notch, and takes in what is dropped on it. Main thread only; the
/// references must outlive it.
class DropIntake {
 public:
    /// Files are written on `disk`.
    DropIntake(NotchModel& model, Shelf& shelf, Clock& clock, MainLoop& loop, DragPasteboard& pasteboard,
               BackgroundQueue& disk);

    /// The pointer moved with the left button held, anywhere.
    void dragMoved(QPointF pointer);
    /// The left button was released, anywhere.
    void dragEnded();

    /// Whether a drop would be taken now.
    bool acceptsDrops() const { return model_.toy == Toy::critter && !model_.screenLocked; }
    /// Drops are no longer taken, not even one that is near.
    void refuse();
    /// Reads what was dropped, each thing in the best of its forms, and puts it on the shelf when all of it is there.
    void handleDrop(std::shared_ptr<Drop> drop);

    /// Holds what other programs wrote for an earlier run that ended before it could. To be called once, at the start.
    void takeLeft();

    /// Name for a file that is dropped as data at `now`, by the user's local time; `extension` without a dot.
    static QString droppedFileName(Date now, const QString& extension);

 private:
    bool isNearNotch(QPointF pointer) const;
    void updateNear(QPointF pointer);
    void setNear(bool isNear);
    void attend();
    void take(const QList<QUrl>& files, const QList<Bite>& bites);

    NotchModel& model_;
    Shelf& shelf_;
    Clock& clock_;
    MainLoop& loop_;
    DragPasteboard& pasteboard_;
    BackgroundQueue& disk_;

    int dragPBCount_ = 0;       // the drag that was asked about last
    bool dragIsFiles_ = false;  // what is dragged now can be held
    bool dragging_ = false;     // with the button held down
    QPointF lastDrag_;
    TimerHandle closeMouth_;
    TimerHandle attention_;  // keeps the creature awake while a usable drag goes on
    BackgroundJobs jobs_;
    Lifetime lifetime_;
};
