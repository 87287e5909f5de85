#pragma once

#include <QGuiApplication>
#include <QPointF>
#include <QRectF>
#include <QScreen>

/// Three kinds of screen coordinates meet here. The model's are points with y growing upwards from the bottom left
/// corner of the main screen; Qt's are points with y growing downwards; native ones are device pixels with y growing
/// downwards. Main thread only. Without a screen all of them coincide but for the direction of y.

/// Where the model's origin is in Qt's coordinates.
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

/// A rectangle's top() is its lowest y in the model's coordinates and its highest place in Qt's.
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

/// The screen that shows a native point, else the main one; null only where there is no screen.
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
