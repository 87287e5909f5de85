#pragma once

#include <QList>
#include <QPointF>
#include <QString>
#include <QUrl>
#include <memory>

#include "creature/NotchModel.h"
#include "platform/BackgroundJobs.h"
#include "platform/Drop.h"

class DragPasteboard;
class Shelf;

/// Watches for drags from other programs near the notch, and takes in what is dropped on it. Main thread only; the
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

    /// Whether a drop would be accepted now.
    bool acceptsDrops() const { return model_.toy == Toy::critter && !model_.screenLocked; }
    /// Stops reacting to the current drag: drops are no longer accepted.
    void refuse();
    /// Reads what was dropped, each thing in its best form, and puts everything on the shelf at once.
    void handleDrop(std::shared_ptr<Drop> drop);

    /// Holds the files that other programs finished writing after an earlier run had ended. Call once, at startup.
    void takeLeftovers();

    /// Name for a file dropped as data at `now`, in local time; `extension` without a dot.
    static QString droppedFileName(Date now, const QString& extension);

 private:
    bool isNearNotch(QPointF pointer) const;
    void updateNear(QPointF pointer);
    void setNear(bool isNear);
    void keepAwake();
    void take(const QList<QUrl>& files, const QList<Bite>& bites);

    NotchModel& model_;
    Shelf& shelf_;
    Clock& clock_;
    MainLoop& loop_;
    DragPasteboard& pasteboard_;
    BackgroundQueue& disk_;

    int dragPBCount_ = 0;       // change count of the last drag that was asked about
    bool dragIsFiles_ = false;  // the current drag can be held
    bool dragging_ = false;     // the button is down
    QPointF lastDrag_;
    TimerHandle closeMouth_;
    TimerHandle keepAwakeTimer_;  // keeps the creature awake while a usable drag goes on
    BackgroundJobs jobs_;
    Lifetime lifetime_;
};
