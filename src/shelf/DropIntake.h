#pragma once

#include <QList>
#include <QPointF>
#include <QString>
#include <QUrl>
#include <functional>
#include <memory>

#include "creature/NotchModel.h"
#include "platform/Drop.h"

class BackgroundQueue;
class DragPasteboard;

/// Sees what other programs drag towards the notch, and takes in what is dropped on it. Main thread only; the
/// references must outlive it.
class DropIntake {
 public:
    /// Files are written on `disk`.
    DropIntake(NotchModel& model, Clock& clock, MainLoop& loop, DragPasteboard& pasteboard, BackgroundQueue& disk);
    ~DropIntake();

    /// The pointer moved with the left button held, anywhere.
    void dragMoved(QPointF pointer);
    /// The left button was released, anywhere.
    void dragEnded();

    /// Whether a drop would be taken now.
    bool acceptsDrops() const { return m_.toy == Toy::critter && !m_.screenLocked; }
    /// Drops are no longer taken, not even one that is near.
    void refuse();
    /// Reads what was dropped, each thing in the best of its forms, and puts it on the shelf when all of it is there.
    void handleDrop(std::shared_ptr<Drop> drop);

    /// Holds what other programs wrote for an earlier run that ended before it could. To be called once, at the start.
    void takeLeft();

    /// Name for a file that was dropped as data, by the user's local time; `extension` without a dot.
    QString droppedFileName(const QString& extension) const;

 private:
    bool nearNotch(QPointF pointer) const;
    void judge(QPointF pointer);
    void setNear(bool near);
    void attend();
    void take(const QList<QUrl>& files, const QList<Bite>& bites);

    NotchModel& m_;
    Clock& clock_;
    MainLoop& loop_;
    DragPasteboard& pasteboard_;
    BackgroundQueue& disk_;

    int dragPBCount_ = 0;       // the drag that was asked about last
    bool dragIsFiles_ = false;  // what is dragged now can be held
    bool dragging_ = false;     // with the button held down
    QPointF lastDrag_;
    TimerHandle farewell_;
    TimerHandle attention_;              // keeps the creature awake while a usable drag goes on
    std::shared_ptr<DropIntake*> self_;  // for what comes back from the disk
};
