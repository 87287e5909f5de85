#pragma once

#include <QImage>
#include <algorithm>
#include <cmath>
#include <optional>

// What can be measured in a picture of the top of the screen, in the picture's coordinates: points, y downwards. The
// background must be brighter than the creature's black body.

inline int brightest(QRgb c) {
    return std::max({qRed(c), qGreen(c), qBlue(c)});
}
inline int darkest(QRgb c) {
    return std::min({qRed(c), qGreen(c), qBlue(c)});
}

// Below the flares at the top corners and the status symbol, above the rounding at the bottom and the eyes.
constexpr int kProbeRow = 28;
// Beside the face, inside the rounding.
constexpr int kProbeColumn = 60, kRounding = 27;

/// The black outline.
struct Body {
    double left, right, bottom;
    double width() const { return right - left; }
    double center() const { return (left + right) / 2; }
    /// Breathing makes it up to 0.8 % smaller, and edges are soft.
    bool is(double wantedWidth, double wantedHeight) const {
        return std::abs(width() - wantedWidth) < 3 && std::abs(bottom - wantedHeight) < 2;
    }
};

/// Absent when nothing there is black.
inline std::optional<Body> bodyIn(const QImage& picture) {
    const auto black = [&](int x, int y) { return brightest(picture.pixel(x, y)) < 60; };
    int left = 0;
    while (left < picture.width() && !black(left, kProbeRow)) ++left;
    if (left == picture.width()) return {};
    int right = picture.width();
    while (!black(right - 1, kProbeRow)) --right;
    const int column = std::clamp((left + right) / 2 - kProbeColumn, 0, picture.width() - 1);
    int bottom = picture.height();
    while (bottom > 0 && !black(column, bottom - 1)) --bottom;
    return Body{double(left), double(right), double(bottom)};
}

/// Whether there is an open eye on both sides of the body's middle. The lid hides a little of it at the top.
inline bool hasOpenEyes(const QImage& picture) {
    const auto body = bodyIn(picture);
    if (!body) return false;
    const auto isOpen = [&](double from, double to) {
        QRect white;
        for (int y = kProbeRow; y < int(body->bottom) - 3; ++y) {
            for (int x = int(from); x < int(to); ++x) {
                if (darkest(picture.pixel(x, y)) > 150) white |= QRect(x, y, 1, 1);
            }
        }
        return white.width() >= 8 && 2 * white.height() > white.width();
    };
    return isOpen(body->left + kRounding, body->center()) && isOpen(body->center(), body->right - kRounding);
}

/// How many pixels are as colourful as confetti that has just been thrown.
inline int colourfulPixels(const QImage& picture) {
    int count = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb c = picture.pixel(x, y);
            count += brightest(c) > 110 && brightest(c) - darkest(c) > 80;
        }
    }
    return count;
}
