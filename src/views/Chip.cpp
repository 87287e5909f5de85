#include "views/Chip.h"

#include <QFileInfo>
#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/FileIcons.h"
#include "views/Colors.h"
#include "views/FilePicture.h"
#include "views/PieceIds.h"
#include "views/Shapes.h"

namespace {

constexpr double kOuter = 3;
constexpr double kCorner = 10;
constexpr double kGlyphMiddle = -6;  // from the chip's middle
constexpr double kCaptionMiddle = 16.5;
constexpr double kCaptionWidth = 42;
constexpr double kGlyphSize = 15;
constexpr double kHoverScale = 0.07;
constexpr int kIconPixels = 64;  // for 30 points at twice the resolution

const TextStyle kCaption{7.5, QFont::Medium, Face::rounded};
const TextStyle kCountdown{7.5, QFont::DemiBold, Face::monospaced};
const TextStyle kDone{7.5, QFont::Bold};

QString captionOf(const HeldThing& thing) {
    if (const auto* file = std::get_if<QUrl>(&thing)) {
        const QString name = file->adjusted(QUrl::StripTrailingSlash).fileName();
        const QString base = QFileInfo(name).completeBaseName();
        return base.isEmpty() ? name : base;
    }
    const auto* bite = std::get_if<Bite>(&thing);
    if (!bite) return {};
    if (bite->text()) return bite->text()->simplified();
    return bite->url()->host().isEmpty() ? bite->url()->toString() : bite->url()->host();
}

}  // namespace

/// Everything that the chip's picture depends on.
struct Chip::Look {
    QString symbol;  ///< empty: the file's picture
    QColor symbolColor;
    QString text;
    TextStyle textStyle;
    QColor textColor;
    QColor fill;
    double outline = 0;  ///< opacity
};

Chip::Chip(int number, HeldThing thing, const QPointF& middle, const ChipPorts& ports, Clock& clock, MainLoop& loop,
           std::function<void()> changed)
    : number_(number),
      thing_(std::move(thing)),
      ports_(ports),
      clock_(clock),
      changed_(std::move(changed)),
      made_(clock.uptime()),
      hold_(loop,
            [this] {
                updateRemove(std::nullopt);
                changed_();
            }),
      middle_(middle) {
    caption_ = Canvas::elidedMiddle(captionOf(thing_), kCaptionWidth, kCaption);
    updateRemove(std::nullopt);
    findPicture();
}

void Chip::findPicture() {
    const auto* file = std::get_if<QUrl>(&thing_);
    if (!file) return;
    const QString extension = QFileInfo(file->fileName()).suffix();
    picture_ = FilePicture::make({}, extension);
    ports_.icons.find(*file, kIconPixels, [this, weak = std::weak_ptr(alive_), extension](const QImage& icon) {
        if (weak.expired() || icon.isNull()) return;
        picture_ = FilePicture::make(icon, extension);
        changed_();
    });
}

void Chip::setThing(const HeldThing& thing) {
    thing_ = thing;
}

void Chip::moveTo(const QPointF& middle, const std::optional<Animation>& how) {
    middle_.aim(middle, how, clock_.uptime());
}

void Chip::show(bool shown, const std::optional<Animation>& how) {
    presence_.aim(shown ? 1 : 0, how, clock_.uptime());
}

bool Chip::gone() const {
    return !shown() && !presence_.moving(clock_.uptime());
}

void Chip::setHover(bool hover) {
    if (hover == hover_) return;
    hover_ = hover;
    if (const auto* file = std::get_if<QUrl>(&thing_); file && ports_.trace) {
        ports_.trace(QStringLiteral("chip %1 hover → %2")
                         .arg(file->fileName(), hover ? QStringLiteral("true") : QStringLiteral("false")));
    }
    const auto how = Animation::easeOut(0.14);
    glow_.aim(hover && !timer() ? 1 : 0, how, clock_.uptime());
    hold_.hover(hover);
    updateRemove(how);
    changed_();
}

void Chip::updateRemove(const std::optional<Animation>& how) {
    remove_.show(removeShown(), how, clock_.uptime());
}

QRectF Chip::inner() const {
    const QPointF middle = middle_.at(clock_.uptime());
    return {middle.x() - width / 2, middle.y() - height / 2, width, height};
}

QRectF Chip::outer() const {
    return inner().adjusted(-kOuter, -kOuter, kOuter, kOuter);
}

bool Chip::removeHit(const QPointF& point) const {
    const QRectF frame = inner();
    const QPointF corner(frame.right() - RemoveX::size / 2, frame.top() + RemoveX::size / 2);
    return removeShown() && RemoveX::hit(point - corner);
}

void Chip::pressRemove() {
    remove_.press(clock_.uptime());
    changed_();
}

bool Chip::releaseRemove(const QPointF& way) {
    remove_.release(clock_.uptime());
    changed_();
    return RemoveX::meant(way);
}

double Chip::lastTick() const {
    return made_ + std::floor(clock_.uptime() - made_);
}

double Chip::nextFrame() const {
    const double now = clock_.uptime();
    if (middle_.moving(now) || presence_.moving(now) || glow_.moving(now) || remove_.moving(now)) return now;
    if (timer() && !timer()->done) return lastTick() + 1;
    return std::numeric_limits<double>::infinity();
}

QString Chip::countdown() const {
    const double sinceTick = clock_.uptime() - lastTick();
    const double left = timer()->fireAt - clock_.now() + sinceTick;
    const auto seconds = qint64(std::clamp(left, 0.0, 1e9));
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

Chip::Look Chip::look() const {
    const double glow = glow_.at(clock_.uptime());
    const QColor plain = white(0.07), fill = mixed(plain, accentOrange(0.16), glow);
    if (timer() && timer()->done)
        return {QStringLiteral("bell.fill"),
                accentOrange(),
                QStringLiteral("done!"),
                kDone,
                accentOrange(),
                accentOrange(0.2)};
    if (timer()) return {QStringLiteral("timer"), white(0.85), countdown(), kCountdown, white(0.7), plain};
    QString symbol;
    if (const auto* bite = std::get_if<Bite>(&thing_))
        symbol = bite->text() ? QStringLiteral("text.quote") : QStringLiteral("link");
    return {symbol, white(0.85), caption_, kCaption, white(0.6), fill, 0.45 * glow};
}

void Chip::drawGlyph(Canvas& canvas, const Look& look, const QImage& picture) {
    if (!look.symbol.isEmpty()) return canvas.symbol(look.symbol, {0, kGlyphMiddle}, kGlyphSize, look.symbolColor);
    constexpr double reach = FilePicture::side / 2 + FilePicture::margin;
    canvas.picture(picture, QRectF(-reach, kGlyphMiddle - reach, 2 * reach, 2 * reach));
}

void Chip::compose(DisplayList& list) const {
    const double now = clock_.uptime();
    const double glow = glow_.at(now);
    const QPointF middle = middle_.at(now);
    list.with(QTransform::fromTranslate(middle.x(), middle.y()), presence_.at(now), [&] {
        const double scale = 1 + kHoverScale * glow;
        const QRectF frame(-width / 2, -height / 2, width, height);
        const Look l = look();
        list.with(QTransform::fromScale(scale, scale), 1, [&] {
            const PictureKey key{l.symbol, l.symbolColor, l.text, l.textColor, l.fill, l.outline, picture_};
            list.add(piece::chips + 2 * number_, frame, key, [l, frame, picture = picture_](Canvas& canvas) {
                canvas.fill(continuousRectangle(frame, kCorner), l.fill);
                if (l.outline > 0) {
                    canvas.stroke(continuousRectangle(frame.adjusted(0.5, 0.5, -0.5, -0.5), kCorner - 0.5),
                                  accentOrange(l.outline), 1);
                }
                drawGlyph(canvas, l, picture);
                canvas.text(l.text, {0, kCaptionMiddle}, l.textStyle, l.textColor);
            });
        });
        const QPointF corner(frame.right() - RemoveX::size / 2, frame.top() + RemoveX::size / 2);
        list.with(QTransform::fromTranslate(corner.x(), corner.y()), 1,
                  [&] { remove_.compose(list, piece::chips + 2 * number_ + 1, now); });
    });
}
