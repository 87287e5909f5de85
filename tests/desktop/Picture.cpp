#include "desktop/Picture.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

// Below the flares at the top corners and the status symbol, above the rounding at the bottom and the eyes.
constexpr int kProbeRow = 28;
// Beside the face, inside the rounding.
constexpr int kProbeColumn = 60;
constexpr int kRounding = 27;

int brightest(QRgb c) {
    return std::max({qRed(c), qGreen(c), qBlue(c)});
}
int darkest(QRgb c) {
    return std::min({qRed(c), qGreen(c), qBlue(c)});
}

bool black(QRgb c) {
    return brightest(c) < 60;
}
/// From the middle of an open eye to that of its pupil.
QPointF gazeIn(const QImage& picture, const QRect& eyeWhite) {
    const double radius = eyeWhite.width() / 2.0;
    const QPointF middle(eyeWhite.left() + radius, eyeWhite.top() + eyeWhite.height() - radius);
    QPointF sum;
    int count = 0;
    for (int y = eyeWhite.top() + 1; y <= eyeWhite.bottom(); ++y) {
        for (int x = eyeWhite.left(); x <= eyeWhite.right(); ++x) {
            const QPointF way = QPointF(x + 0.5, y + 0.5) - middle;
            if (brightest(picture.pixel(x, y)) > 110 || std::hypot(way.x(), way.y()) > radius - 1.5) continue;
            sum += way;
            ++count;
        }
    }
    return count ? sum / count : QPointF(0, 0);
}

std::optional<SeenEye> eyeBetween(const QImage& picture, int from, int to, int bottom) {
    QRect found;
    for (int y = kProbeRow; y < bottom; ++y) {
        for (int x = from; x < to; ++x) {
            if (darkest(picture.pixel(x, y)) > 150) found |= QRect(x, y, 1, 1);
        }
    }
    if (found.width() < 8) return {};
    return SeenEye{QRectF(found), gazeIn(picture, found)};
}

}  // namespace

bool Body::is(double wantedWidth, double wantedHeight) const {
    return std::abs(width() - wantedWidth) < 3 && std::abs(bottom - wantedHeight) < 2;
}

std::optional<Body> bodyIn(const QImage& picture) {
    int left = 0;
    while (left < picture.width() && !black(picture.pixel(left, kProbeRow))) ++left;
    if (left == picture.width()) return {};
    int right = picture.width();
    while (!black(picture.pixel(right - 1, kProbeRow))) --right;
    const int column = std::clamp((left + right) / 2 - kProbeColumn, 0, picture.width() - 1);
    int bottom = picture.height();
    while (bottom > 0 && !black(picture.pixel(column, bottom - 1))) --bottom;
    return Body{double(left), double(right), double(bottom)};
}

std::optional<Face> faceIn(const QImage& picture) {
    const auto body = bodyIn(picture);
    if (!body) return {};
    const int middle = int(body->center());
    const int bottom = int(body->bottom) - 3;
    const auto left = eyeBetween(picture, int(body->left) + kRounding, middle, bottom);
    const auto right = eyeBetween(picture, middle, int(body->right) - kRounding, bottom);
    return left && right ? std::optional(Face{*left, *right}) : std::nullopt;
}

int colourfulPixels(const QImage& picture) {
    int count = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb c = picture.pixel(x, y);
            if (brightest(c) > 110 && brightest(c) - darkest(c) > 80) ++count;
        }
    }
    return count;
}
