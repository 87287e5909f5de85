#include "platform/linux/QtPanelWindow.h"

#include <QDrag>
#include <QDropEvent>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QPointer>
#include <algorithm>
#include <utility>

#include "platform/linux/CopiedDrop.h"
#include "platform/linux/ScreenCoordinates.h"

namespace {
std::optional<PanelWindow::Button> portButton(Qt::MouseButton button) {
    switch (button) {
        case Qt::LeftButton:
            return PanelWindow::Button::left;
        case Qt::RightButton:
            return PanelWindow::Button::right;
        case Qt::MiddleButton:
            return PanelWindow::Button::middle;
        default:
            return {};
    }
}

QSurfaceFormat translucent() {
    QSurfaceFormat format;
    format.setAlphaBufferSize(8);
    return format;
}
}  // namespace

class QtPanelWindow::Surface : public QWindow {
 public:
    explicit Surface(QtPanelWindow& panel) : panel_(panel) {
        setSurfaceType(RasterSurface);
        setFormat(translucent());
        setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::X11BypassWindowManagerHint |
                 Qt::WindowDoesNotAcceptFocus | Qt::NoDropShadowWindowHint);
    }

 protected:
    void exposeEvent(QExposeEvent*) override { panel_.exposed(); }
    void resizeEvent(QResizeEvent*) override { panel_.exposed(); }
    void mousePressEvent(QMouseEvent* event) override { panel_.pressed(*event); }
    void mouseReleaseEvent(QMouseEvent* event) override { panel_.released(*event); }
    void mouseMoveEvent(QMouseEvent* event) override { panel_.moved(*event); }
    bool event(QEvent* event) override { return panel_.dragged(*event) || QWindow::event(event); }

 private:
    QtPanelWindow& panel_;
};

QtPanelWindow::QtPanelWindow()
    : window_(std::make_unique<Surface>(*this)), store_(std::make_unique<QBackingStore>(window_.get())) {
    QObject::connect(window_.get(), &QWindow::screenChanged, window_.get(), [this] {
        screenChanged();
        exposed();
    });
}

QtPanelWindow::~QtPanelWindow() = default;

void QtPanelWindow::setFrame(const QRectF& frame) {
    // Within the 16-bit coordinates of window systems; the size stays the same.
    constexpr double kFarthest = 30000;
    const QRectF wanted = toQt(frame);
    const QPointF corner(std::clamp(wanted.left(), -kFarthest, kFarthest),
                         std::clamp(wanted.top(), -kFarthest, kFarthest));
    window_->setGeometry(QRect(corner.toPoint(), wanted.size().toSize()).marginsAdded(overdraw_));
}

QRectF QtPanelWindow::frame() const {
    return toModel(shownGeometry().marginsRemoved(overdraw_));
}

void QtPanelWindow::setOverdraw(const QMargins& points) {
    const QRect frame = window_->geometry().marginsRemoved(overdraw_);
    overdraw_ = points;
    window_->setGeometry(frame.marginsAdded(overdraw_));
}

void QtPanelWindow::orderFrontRegardless() {
    window_->show();
}

void QtPanelWindow::setInputRegion(const QRegion& region) {
    inputRegion_ = region;
}

double QtPanelWindow::devicePixelRatio() const {
    return window_->devicePixelRatio();
}

double QtPanelWindow::refreshRate() const {
    return refreshRateOf(window_->screen());
}

void QtPanelWindow::paint(const QRegion& damage, const std::function<void(QPainter&)>& draw) {
    if (!window_->isExposed()) return;
    QRegion area = damage.translated(origin()) & QRect(QPoint(), window_->size());
    if (store_->size() != window_->size()) {
        store_->resize(window_->size());
        area = QRect(QPoint(), window_->size());  // a resized store is empty
    }
    if (area.isEmpty()) return;

    store_->beginPaint(area);
    drawInto(*store_->paintDevice(), area, draw);
    store_->endPaint();
    store_->flush(area);
}

void QtPanelWindow::drawInto(QPaintDevice& device, const QRegion& area,
                             const std::function<void(QPainter&)>& draw) const {
    QPainter painter(&device);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    for (const QRect& part : area) painter.fillRect(part, Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setClipRegion(area);
    painter.translate(origin());
    draw(painter);
}

void QtPanelWindow::pressed(QMouseEvent& event) {
    const auto button = portButton(event.button());
    const QPointF position = event.position() - origin();
    if (!button || (!held_ && !inputRegion_.contains(position.toPoint()))) return;
    // The release of a right button goes to the menu that its press opens.
    if (*button != Button::right) held_ |= event.button();
    listener().pressed(*button, position, toModel(event.globalPosition()));
}

void QtPanelWindow::released(QMouseEvent& event) {
    draggedOut_.setFlag(event.button(), false);
    if (!held_.testFlag(event.button())) return;
    held_.setFlag(event.button(), false);
    listener().released(*portButton(event.button()), toModel(event.globalPosition()));
}

void QtPanelWindow::moved(QMouseEvent& event) {
    if (event.buttons() & held_) listener().dragged(toModel(event.globalPosition()));
}

bool QtPanelWindow::dragged(QEvent& event) {
    switch (event.type()) {
        case QEvent::DragEnter:
        case QEvent::DragMove: {
            auto& drag = static_cast<QDropEvent&>(event);
            const bool taken = takes(drag);
            drag.setDropAction(Qt::CopyAction);  // so that no source deletes what it dragged
            drag.setAccepted(taken);
            setTargeted(taken);
            return true;
        }
        case QEvent::DragLeave:
            setTargeted(false);
            return true;
        case QEvent::Drop: {
            auto& drag = static_cast<QDropEvent&>(event);
            const bool taken = takes(drag);
            drag.setDropAction(Qt::CopyAction);
            drag.setAccepted(taken);
            setTargeted(false);
            if (taken) listener().dropped(std::make_shared<CopiedDrop>(*drag.mimeData()));
            return true;
        }
        default:
            return false;
    }
}

bool QtPanelWindow::takes(const QDropEvent& drag) const {
    const bool ours = drag.source();
    return !ours && CopiedDrop::hasUsableForm(*drag.mimeData()) && listener().acceptsDrop();
}

void QtPanelWindow::setTargeted(bool targeted) {
    if (targeted == std::exchange(targeted_, targeted)) return;
    listener().dropTargeted(targeted);
}

void QtPanelWindow::dragOut(const QUrl& file, const QImage& icon, QPointF grip) {
    if (!held_ || draggedOut_) return;
    draggedOut_ = std::exchange(held_, {});
    // Later, because a drag runs an event loop of its own.
    const auto begin = [this, file, icon, grip] { runDrag(file, icon, grip); };
    QMetaObject::invokeMethod(window_.get(), begin, Qt::QueuedConnection);
}

void QtPanelWindow::runDrag(const QUrl& file, const QImage& icon, QPointF grip) {
    if (!draggedOut_) return;  // released meanwhile
    auto* offer = new QMimeData;
    offer->setData(QStringLiteral("text/uri-list"), file.toEncoded() + "\r\n");
    auto* drag = new QDrag(window_.get());  // deletes itself once the receiver has read it
    drag->setMimeData(offer);
    drag->setPixmap(QPixmap::fromImage(icon));
    drag->setHotSpot(grip.toPoint());
    const QPointer<QWindow> window = window_.get();
    drag->exec(Qt::CopyAction);
    if (window) draggedOut_ = {};
}

void QtPanelWindow::exposed() {
    if (window_->isExposed()) listener().exposed();
}
