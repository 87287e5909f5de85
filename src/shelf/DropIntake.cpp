#include "shelf/DropIntake.h"

#include <QDateTime>
#include <QLocale>
#include <cmath>

#include "platform/DragPasteboard.h"
#include "shelf/DropReading.h"
#include "shelf/Shelf.h"

namespace {

constexpr double kNearBelow = 90;          // points below the top of the screen
constexpr double kNearBeside = 190;        // points from the centre of the notch
constexpr double kKeepAwakeInterval = 10;  // seconds; shorter than it takes to doze off
constexpr double kMouthOpen = 0.45;        // seconds that the mouth stays open after the button's release

}  // namespace

DropIntake::DropIntake(NotchModel& model, Shelf& shelf, Clock& clock, MainLoop& loop, DragPasteboard& pasteboard,
                       BackgroundQueue& disk)
    : model_(model),
      shelf_(shelf),
      clock_(clock),
      loop_(loop),
      pasteboard_(pasteboard),
      disk_(disk),
      jobs_(disk, loop) {}

bool DropIntake::isNearNotch(QPointF pointer) const {
    return pointer.y() > model_.screenTop - kNearBelow && std::abs(pointer.x() - model_.centerX) < kNearBeside;
}

void DropIntake::dragMoved(QPointF pointer) {
    if (!acceptsDrops()) return;
    lastDrag_ = pointer;
    dragging_ = true;
    if (const int count = pasteboard_.changeCount(); count != dragPBCount_) {
        dragPBCount_ = count;
        dragIsFiles_ = false;
        pasteboard_.canReadUsable([this](bool usable) {
            // The button may have been released before the source answered.
            dragIsFiles_ = usable && dragging_;
            if (dragIsFiles_) keepAwake();
            updateNear(lastDrag_);
        });
    }
    updateNear(pointer);
}

// A drag may pause for longer than it takes to doze off.
void DropIntake::keepAwake() {
    model_.markActivity(clock_.uptime());
    keepAwakeTimer_ = loop_.every(kKeepAwakeInterval, [this] { model_.markActivity(clock_.uptime()); });
}

void DropIntake::updateNear(QPointF pointer) {
    const bool isNear = dragIsFiles_ && acceptsDrops() && isNearNotch(pointer);
    if (isNear) closeMouth_.cancel();  // of the previous drag
    if (isNear && model_.hidden) model_.withAnimation(commonSpring(), [this] { model_.hidden = false; });
    if (isNear != model_.dragNear) setNear(isNear);
}

void DropIntake::setNear(bool isNear) {
    model_.withAnimation(Animation::spring(0.3, 0.7), [&] { model_.dragNear = isNear; });
}

void DropIntake::refuse() {
    dragIsFiles_ = false;
    closeMouth_.cancel();
    model_.dragNear = false;
    model_.dropTargeted = false;
}

void DropIntake::dragEnded() {
    // The next drag may carry nothing: a window, a text selection or the creature itself may be dragged.
    dragIsFiles_ = dragging_ = false;
    keepAwakeTimer_.cancel();
    if (!model_.dragNear) return;
    closeMouth_ = loop_.after(
        kMouthOpen, [this] { model_.withAnimation(Animation::easeOut(0.25), [this] { model_.dragNear = false; }); });
}

QString DropIntake::droppedFileName(Date now, const QString& extension) {
    const auto time = QDateTime::fromMSecsSinceEpoch(qint64((Date::kReference + now.seconds) * 1000));
    return QStringLiteral("Dropped %1.%2")
        .arg(QLocale().toString(time, QStringLiteral("yyyy-MM-dd 'at' HH.mm.ss")), extension);
}

void DropIntake::handleDrop(std::shared_ptr<Drop> drop) {
    const auto name = [&clock = clock_](const QString& extension) { return droppedFileName(clock.now(), extension); };
    const auto take = [this](const QList<QUrl>& files, const QList<Bite>& bites) { this->take(files, bites); };
    DropReading::start(std::move(drop), shelf_.droppedFolder(), name, loop_, disk_, lifetime_.guard(take));
}

void DropIntake::takeLeftovers() {
    jobs_.run([folder = shelf_.droppedFolder()] { return Inbox::moveOutLeftovers(folder); },
              [this](const QList<QUrl>& files) { shelf_.addItems(files); });
}

void DropIntake::take(const QList<QUrl>& files, const QList<Bite>& bites) {
    model_.markActivity(clock_.uptime());
    model_.withAnimation(Animation::spring(0.32, 0.8), [&] {
        const int count = shelf_.addItems(files) + shelf_.addBites(bites);
        if (count > 0) ++model_.swallowCount;
    });
}
