#pragma once

#include <QColor>

inline QColor accentOrange(double opacity = 1) {
    return QColor::fromRgbF(1.0F, 0.46F, 0.13F, float(opacity));
}
inline QColor eyeWhite() {
    return QColor::fromRgbF(0.97F, 0.97F, 0.97F);
}
/// The usual system green.
inline QColor systemGreen() {
    return QColor::fromRgbF(0.20F, 0.78F, 0.35F);
}
inline QColor white(double opacity) {
    return QColor::fromRgbF(1, 1, 1, float(opacity));
}
inline QColor black(double opacity) {
    return QColor::fromRgbF(0, 0, 0, float(opacity));
}
/// An opaque grey; `value` 0 is black, 1 white.
inline QColor gray(double value) {
    return QColor::fromRgbF(float(value), float(value), float(value));
}

/// `share` of the way from one colour to another, 0 to 1.
inline QColor mixed(const QColor& from, const QColor& to, double share) {
    const auto channel = [share](float a, float b) { return a + (b - a) * float(share); };
    return QColor::fromRgbF(channel(from.redF(), to.redF()), channel(from.greenF(), to.greenF()),
                            channel(from.blueF(), to.blueF()), channel(from.alphaF(), to.alphaF()));
}
