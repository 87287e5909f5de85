#include "platform/linux/x11/X11PanelWindow.h"

#include <xcb/shape.h>
#include <xcb/xinput.h>

#include <QGuiApplication>
#include <utility>

#include "platform/linux/OutlineRegion.h"
#include "platform/linux/ScreenCoordinates.h"

namespace {
/// Requests about the panel go through Qt's connection, to keep them in order with Qt's own.
xcb_connection_t* qtConnection() {
    return qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

/// Gives the window a shape of that kind, in pixels.
void setShape(xcb_window_t window, xcb_shape_sk_t kind, const QRegion& region) {
    std::vector<xcb_rectangle_t> rectangles;
    for (const QRect& part : region)
        rectangles.push_back({int16_t(part.x()), int16_t(part.y()), uint16_t(part.width()), uint16_t(part.height())});
    xcb_shape_rectangles(qtConnection(), XCB_SHAPE_SO_SET, kind, XCB_CLIP_ORDERING_UNSORTED, window, 0, 0,
                         uint32_t(rectangles.size()), rectangles.data());
    xcb_flush(qtConnection());
}

/// The pixels that a region in points touches.
QRegion inPixels(const QRegion& region, double ratio) {
    QRegion pixels;
    for (const QRect& part : region)
        pixels += QRectF(QPointF(part.topLeft()) * ratio, QSizeF(part.size()) * ratio).toAlignedRect();
    return pixels;
}
}  // namespace

X11PanelWindow::X11PanelWindow(const std::shared_ptr<X11Connection>& connection,
                               std::shared_ptr<PointerSampler> sampler, MainLoop& loop)
    : connection_(connection),
      sampler_(std::move(sampler)),
      id_(xcb_window_t(window().winId())),
      neverShaped_(isXWayland(*connection)),
      compositor_(connection, [this] { applyOutline(); }) {
    ignoreMotion();
    prepareDrawing();
    applyInputRegion();
    applyOutline();
    xcb_flush(qtConnection());
    stacking_ = std::make_unique<StackingGuard>(connection, loop, id(), &X11PanelWindow::isOwnWindow,
                                                [this] { return nativeGeometry(*window().screen()).toRect(); });
    drops_ = std::make_unique<X11DropTarget>(connection, loop, id(), *this);
    qGuiApp->installNativeEventFilter(this);
}

X11PanelWindow::~X11PanelWindow() {
    qGuiApp->removeNativeEventFilter(this);
    xcb_free_gc(qtConnection(), context_);
}

// Ignores requests by the window manager to close the window: Qt would close it, and the program would run on without
// its creature.
bool X11PanelWindow::nativeEventFilter(const QByteArray& type, void* message, qintptr*) {
    if (type != "xcb_generic_event_t") return false;
    const auto& event = *static_cast<const xcb_generic_event_t*>(message);
    if (code(event) != XCB_CLIENT_MESSAGE) return false;
    const auto& client = as<xcb_client_message_event_t>(event);
    return client.window == id() && client.type == connection_->atom("WM_PROTOCOLS") && client.format == 32 &&
           client.data.data32[0] == connection_->atom("WM_DELETE_WINDOW");
}

QRectF X11PanelWindow::shownGeometry() const {
    const auto place = connection_->ask(xcb_translate_coordinates, xcb_translate_coordinates_reply, id(),
                                        connection_->root(), int16_t(0), int16_t(0));
    const auto size = connection_->ask(xcb_get_geometry, xcb_get_geometry_reply, id());
    if (!place || !size) return QtPanelWindow::shownGeometry();
    return {toQt(nativeToModel(QPointF(place->dst_x, place->dst_y))),
            QSizeF(size->width, size->height) / devicePixelRatio()};
}

void X11PanelWindow::prepareDrawing() {
    const auto geometry = awaitReply(qtConnection(), xcb_get_geometry, xcb_get_geometry_reply, id());
    if (geometry) depth_ = geometry->depth;
    context_ = xcb_generate_id(qtConnection());
    xcb_create_gc(qtConnection(), context_, id(), 0, nullptr);
}

// Bypasses Qt's backing store, which shares memory with the server and waits before each frame until the server is done
// with the last one; that costs two wake-ups. Sending the few changed pixels is cheaper.
void X11PanelWindow::paint(const QRegion& damage, const std::function<void(QPainter&)>& draw) {
    // Leave other pixel formats to Qt.
    if (depth_ != 32 && depth_ != 24) {
        reshape();
        return QtPanelWindow::paint(damage, draw);
    }
    if (!window().isExposed()) return reshape();
    const double ratio = devicePixelRatio();
    const QSize size = (QSizeF(window().size()) * ratio).toSize();
    QRegion area = damage.translated(origin()) & QRect(QPoint(), window().size());
    if (picture_.size() != size) {
        picture_ = QImage(size, QImage::Format_ARGB32_Premultiplied);
        area = QRect(QPoint(), window().size());
    }
    picture_.setDevicePixelRatio(ratio);
    drawInto(picture_, area, draw);
    // Before sending pixels, since the window does not show any outside its shape.
    reshape();
    for (const QRect& points : area)
        put(QRectF(QPointF(points.topLeft()) * ratio, QSizeF(points.size()) * ratio).toAlignedRect() & picture_.rect());
    xcb_flush(qtConnection());
}

void X11PanelWindow::put(const QRect& pixels) {
    if (pixels.isEmpty()) return;
    const QImage part = picture_.copy(pixels);
    xcb_put_image(qtConnection(), XCB_IMAGE_FORMAT_Z_PIXMAP, id(), context_, uint16_t(part.width()),
                  uint16_t(part.height()), int16_t(pixels.x()), int16_t(pixels.y()), 0, depth_,
                  uint32_t(part.sizeInBytes()), part.constBits());
}

bool X11PanelWindow::isOwnWindow(xcb_window_t window) {
    const xcb_setup_t* setup = xcb_get_setup(qtConnection());
    return (window & ~setup->resource_id_mask) == setup->resource_id_base;
}

void X11PanelWindow::ignoreMotion() {
    // Qt selects both XInput and core motion events, and the core ones arrive when the others are off. Without touch
    // events the server converts touches to presses and releases.
    const struct {
        xcb_input_event_mask_t header;
        uint32_t events;
    } mask{{XCB_INPUT_DEVICE_ALL, 1},  // the same devices as Qt, so that this replaces Qt's mask

           XCB_INPUT_XI_EVENT_MASK_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_BUTTON_RELEASE |
               XCB_INPUT_XI_EVENT_MASK_ENTER | XCB_INPUT_XI_EVENT_MASK_LEAVE};
    xcb_input_xi_select_events(qtConnection(), id(), 1, &mask.header);

    const auto attributes =
        awaitReply(qtConnection(), xcb_get_window_attributes, xcb_get_window_attributes_reply, id());
    if (!attributes) return;
    const uint32_t core =
        attributes->your_event_mask & ~uint32_t(XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_BUTTON_MOTION);
    xcb_change_window_attributes(qtConnection(), id(), XCB_CW_EVENT_MASK, &core);
}

void X11PanelWindow::setOverdraw(const QMargins& points) {
    QtPanelWindow::setOverdraw(points);
    screenChanged();  // the regions begin elsewhere in the window
}

void X11PanelWindow::orderFrontRegardless() {
    reshape();  // a window without any shape would never be told to paint
    QtPanelWindow::orderFrontRegardless();
    // A round trip on Qt's connection, so that our connection's requests come after Qt's.
    awaitReply(qtConnection(), xcb_get_input_focus, xcb_get_input_focus_reply);
    stacking_->settle();
}

void X11PanelWindow::setInputRegion(const QRegion& region) {
    QtPanelWindow::setInputRegion(region);
    if (region == inputRegion_) return;
    inputRegion_ = region;
    applyInputRegion();
}

void X11PanelWindow::setOutline(const QPainterPath& outline) {
    outline_ = outline;
}

void X11PanelWindow::reshape() {
    if (shape_) applyOutline();
}

void X11PanelWindow::applyInputRegion() {
    setShape(id(), XCB_SHAPE_SK_INPUT, inPixels(inputRegion_.translated(origin()), devicePixelRatio()));
}

void X11PanelWindow::applyOutline() {
    if (neverShaped_ || compositor_.running()) {
        shape_.reset();
        xcb_shape_mask(qtConnection(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, id(), 0, 0, XCB_PIXMAP_NONE);
        xcb_flush(qtConnection());
        return;
    }
    const QRegion shape = pixelsInside(outline_.translated(origin()), devicePixelRatio());
    if (std::exchange(shape_, shape) != shape) setShape(id(), XCB_SHAPE_SK_BOUNDING, shape);
}

void X11PanelWindow::screenChanged() {
    applyInputRegion();
    applyOutline();
}

void X11PanelWindow::pressed(QMouseEvent& event) {
    QtPanelWindow::pressed(event);
    if (held() && !drags_) drags_ = sampler_->observe([this](const auto& sample) { dragSampled(sample); });
}

void X11PanelWindow::dragSampled(const PointerSampler::Sample& sample) {
    if (!sample.buttons || !held())
        drags_.reset();
    else
        listener().dragged(sample.pointer);
}
