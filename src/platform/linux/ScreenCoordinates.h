#pragma once

#include <QGuiApplication>
#include <QPointF>
#include <QRectF>
#include <QScreen>

// Conversions between three kinds of screen coordinates. The model's are points with y growing upwards from the bottom
// left corner of the main screen; Qt's are points with y growing downwards; native ones are device pixels with y
// growing downwards. Main thread only. Without a screen they differ only in the direction of y.

/// The model's origin in Qt's coordinates.
inline QPointF modelOrigin() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen) return {};
    const QRect geometry = screen->geometry();
    return QPointF(geometry.left(), geometry.top() + geometry.height());
}

inline QPointF toModel(QPointF qtGlobal) {
    const QPointF origin = modelOrigin();
    return {qtGlobal.x() - origin.x(), origin.y() - qtGlobal.y()};
}

inline QPointF toQt(QPointF model) {
    const QPointF origin = modelOrigin();
    return {model.x() + origin.x(), origin.y() - model.y()};
}

/// QRectF::top() is the smallest y in both: the lower edge in the model's coordinates, the upper edge in Qt's.
inline QRectF toModel(const QRectF& qtGlobal) {
    return {toModel(qtGlobal.bottomLeft()), qtGlobal.size()};
}

inline QRectF toQt(const QRectF& model) {
    return {toQt(model.bottomLeft()), model.size()};
}

/// The screen's rectangle in device pixels. Qt keeps a screen's native corner and scales only its size.
inline QRectF nativeGeometry(const QScreen& screen) {
    return {screen.geometry().topLeft(), QSizeF(screen.geometry().size()) * screen.devicePixelRatio()};
}

/// The refresh rate of a screen, or of a usual one if it is null or reports nonsense, as servers without a monitor do.
inline double refreshRateOf(const QScreen* screen) {
    return screen && screen->refreshRate() >= 20 ? screen->refreshRate() : 60;
}

/// The screen at a native point, or else the main one; null only without any screen.
inline const QScreen* screenAtNative(QPointF native) {
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRectF area = nativeGeometry(*screen);
        if (native.x() >= area.left() && native.x() < area.right() && native.y() >= area.top() &&
            native.y() < area.bottom())
            return screen;
    }
    return QGuiApplication::primaryScreen();
}

inline QPointF nativeToModel(QPointF native) {
    const QScreen* screen = screenAtNative(native);
    if (!screen) return toModel(native);
    const QPointF corner = screen->geometry().topLeft();
    return toModel(QPointF((native - corner) / screen->devicePixelRatio() + corner));
}
