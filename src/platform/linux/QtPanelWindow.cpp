#include "platform/linux/QtPanelWindow.h"

#include <QDragEnterEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QMouseEvent>
#include <algorithm>

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
    // As far as a window system can place a window; it keeps its size wherever it goes.
    constexpr double farthest = 30000;
    const QRectF wanted = toQt(frame);
    const QPointF corner(std::clamp(wanted.left(), -farthest, farthest), std::clamp(wanted.top(), -farthest, farthest));
    window_->setGeometry(QRect(corner.toPoint(), wanted.size().toSize()));
}

QRectF QtPanelWindow::frame() const {
    return toModel(QRectF(window_->geometry()));
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
    const QScreen* screen = window_->screen();
    // Servers without a monitor tell rates such as 0 or 1.
    return screen && screen->refreshRate() >= 20 ? screen->refreshRate() : 60;
}

void QtPanelWindow::paint(const QRegion& damage, const std::function<void(QPainter&)>& draw) {
    if (!window_->isExposed()) return;
    QRegion area = damage & QRect(QPoint(), window_->size());
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

void QtPanelWindow::drawInto(QPaintDevice& device, const QRegion& area, const std::function<void(QPainter&)>& draw) {
    QPainter painter(&device);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    for (const QRect& part : area) painter.fillRect(part, Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setClipRegion(area);
    draw(painter);
}

void QtPanelWindow::pressed(QMouseEvent& event) {
    const auto button = portButton(event.button());
    if (!button || (!held_ && !inputRegion_.contains(event.position().toPoint()))) return;
    held_ |= event.button();
    if (onPress) onPress(*button, event.position(), toModel(event.globalPosition()));
}

void QtPanelWindow::released(QMouseEvent& event) {
    if (!held_.testFlag(event.button())) return;
    held_.setFlag(event.button(), false);
    if (onRelease) onRelease(*portButton(event.button()), toModel(event.globalPosition()));
}

void QtPanelWindow::moved(QMouseEvent& event) {
    if ((event.buttons() & held_) && onDrag) onDrag(toModel(event.globalPosition()));
}

bool QtPanelWindow::dragged(QEvent& event) {
    const auto tell = [this](bool targeted) {
        if (onDropTargeted) onDropTargeted(targeted);
    };
    switch (event.type()) {
        case QEvent::DragEnter: {
            auto& enter = static_cast<QDragEnterEvent&>(event);
            const QMimeData* offered = enter.mimeData();
            const bool wanted = offered->hasUrls() || offered->hasText() || offered->hasImage();
            enter.setAccepted(wanted);
            if (wanted) tell(true);
            return true;
        }
        case QEvent::DragLeave:
            tell(false);
            return true;
        case QEvent::Drop:
            // Refused until there is somebody to take it, so that the source does not think it has been moved.
            event.ignore();
            tell(false);
            return true;
        default:
            return false;
    }
}

void QtPanelWindow::dragOut(const QUrl&, const QImage&, QPointF) {}

void QtPanelWindow::exposed() {
    if (window_->isExposed() && onExpose) onExpose();
}
