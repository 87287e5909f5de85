#include "shelf/DropIntake.h"

#include <QDateTime>
#include <QLocale>
#include <cmath>

#include "platform/BackgroundQueue.h"
#include "platform/DragPasteboard.h"
#include "shelf/DropReading.h"

namespace {

constexpr double kNearBelow = 90;    // points under the top of the screen
constexpr double kNearBeside = 190;  // points from the notch's middle
constexpr double kAttention = 10;    // seconds; shorter than it takes to doze off
constexpr double kFarewell = 0.45;   // seconds that the mouth stays open after the button's release

}  // namespace

DropIntake::DropIntake(NotchModel& model, Clock& clock, MainLoop& loop, DragPasteboard& pasteboard,
                       BackgroundQueue& disk)
    : m_(model),
      clock_(clock),
      loop_(loop),
      pasteboard_(pasteboard),
      disk_(disk),
      self_(std::make_shared<DropIntake*>(this)) {}

DropIntake::~DropIntake() = default;

bool DropIntake::nearNotch(QPointF pointer) const {
    return pointer.y() > m_.screenTop - kNearBelow && std::abs(pointer.x() - m_.centerX) < kNearBeside;
}

void DropIntake::dragMoved(QPointF pointer) {
    if (!acceptsDrops()) return;
    lastDrag_ = pointer;
    dragging_ = true;
    if (const int count = pasteboard_.changeCount(); count != dragPBCount_) {
        dragPBCount_ = count;
        dragIsFiles_ = false;
        pasteboard_.canReadUsable([this](bool usable) {
            // The button may have been released while the source thought about it.
            dragIsFiles_ = usable && dragging_;
            if (dragIsFiles_) attend();
            judge(lastDrag_);
        });
    }
    judge(pointer);
}

// A drag may also hang still for long.
void DropIntake::attend() {
    m_.markActivity();
    attention_ = loop_.every(kAttention, [this] { m_.markActivity(); });
}

void DropIntake::judge(QPointF pointer) {
    const bool near = dragIsFiles_ && acceptsDrops() && nearNotch(pointer);
    if (near) farewell_.cancel();  // of the drag before
    if (near && m_.hidden) m_.withAnimation(commonSpring(), [this] { m_.hidden = false; });
    if (near != m_.dragNear) setNear(near);
}

void DropIntake::setNear(bool near) {
    m_.withAnimation(Animation::spring(0.3, 0.7), [&] { m_.dragNear = near; });
}

void DropIntake::refuse() {
    dragIsFiles_ = false;
    farewell_.cancel();
    m_.dragNear = false;
    m_.dropTargeted = false;
}

void DropIntake::dragEnded() {
    // What is dragged next need not be a drag of things: a window, a selection, the creature itself.
    dragIsFiles_ = dragging_ = false;
    attention_.cancel();
    if (!m_.dragNear) return;
    farewell_ =
        loop_.after(kFarewell, [this] { m_.withAnimation(Animation::easeOut(0.25), [this] { m_.dragNear = false; }); });
}

QString DropIntake::droppedFileName(const QString& extension) const {
    const QDateTime now = QDateTime::fromMSecsSinceEpoch(qint64((Date::kReference + clock_.now().seconds) * 1000));
    return QStringLiteral("Dropped %1.%2")
        .arg(QLocale().toString(now, QStringLiteral("yyyy-MM-dd 'at' HH.mm.ss")), extension);
}

void DropIntake::handleDrop(std::shared_ptr<Drop> drop) {
    const auto name = [this, self = std::weak_ptr(self_)](const QString& extension) {
        return self.expired() ? QString() : droppedFileName(extension);
    };
    DropReading::start(std::move(drop), m_.droppedFolder(), name, loop_, disk_,
                       [this, self = std::weak_ptr(self_)](const QList<QUrl>& files, const QList<Bite>& bites) {
                           if (!self.expired()) take(files, bites);
                       });
}

void DropIntake::takeLeft() {
    disk_.run([this, &loop = loop_, self = std::weak_ptr(self_), folder = m_.droppedFolder()] {
        const QList<QUrl> files = Inbox::bringOutLeft(folder);
        if (files.isEmpty()) return;
        loop.post([this, self, files] {
            if (!self.expired()) m_.addItems(files);
        });
    });
}

void DropIntake::take(const QList<QUrl>& files, const QList<Bite>& bites) {
    m_.markActivity();
    m_.withAnimation(Animation::spring(0.32, 0.8), [&] {
        const int count = m_.addItems(files) + m_.addBites(bites);
        if (count > 0) ++m_.swallowCount;
    });
}
