#include "views/Chip.h"

#include <QFileInfo>
#include <algorithm>
#include <cmath>
#include <limits>

#include "creature/Numbers.h"
#include "platform/FileIcons.h"
#include "views/Colors.h"
#include "views/FilePicture.h"
#include "views/PieceIds.h"
#include "views/Shapes.h"

namespace {

constexpr double kCorner = 10;
constexpr double kGlyphMiddle = -6;  // from the chip's middle
constexpr double kCaptionMiddle = 16.5;
constexpr double kCaptionWidth = 42;
constexpr double kGlyphSize = 15;
constexpr double kHoverScale = 0.07;
constexpr double kHold = 0.45;   // seconds
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

/// The middle of the remove button of a chip that fills `frame`.
QPointF removeCorner(const QRectF& frame) {
    return {frame.right() - RemoveX::kSize / 2, frame.top() + RemoveX::kSize / 2};
}

}  // namespace

/// What the chip shows.
struct Chip::Look {
    QString symbol;  ///< empty: show the file's picture
    QColor symbolColor;
    QString text;
    TextStyle textStyle;
    QColor textColor;
    QColor fill;
    double outline = 0;  ///< opacity
};

Chip::Chip(int number, HeldThing thing, const QPointF& middle, const ViewContext& context)
    : number_(number),
      thing_(std::move(thing)),
      context_(context),
      made_(context.now()),
      middle_(context.animations, middle) {
    caption_ = Canvas::elided(captionOf(thing_), kCaptionWidth, kCaption, Qt::ElideMiddle);
    updateRemove(std::nullopt);
    findPicture();
}

void Chip::findPicture() {
    const auto* file = std::get_if<QUrl>(&thing_);
    if (!file) return;
    const QString extension = QFileInfo(file->fileName()).suffix();
    picture_ = FilePicture::make({}, extension);
    const auto found = [this, extension](const QImage& icon) {
        if (icon.isNull()) return;
        picture_ = FilePicture::make(icon, extension);
        context_.changed();
    };
    context_.ports.icons.find(*file, kIconPixels, lifetime_.guard(found));
}

void Chip::setHover(bool hover) {
    if (hover == hover_) return;
    hover_ = hover;
    if (const auto* file = std::get_if<QUrl>(&thing_); file && context_.ports.trace) {
        context_.ports.trace(QStringLiteral("chip %1 hover → %2").arg(file->fileName(), formatBool(hover)));
    }
    const auto how = Animation::easeOut(0.14);
    glow_.aim(hover && !timer() ? 1 : 0, how, context_.now());
    hold_.cancel();
    if (!hover) {
        hold_ = context_.loop.after(kHold, [this] {
            const TimerHandle self = std::move(hold_);
            updateRemove(std::nullopt);
            context_.changed();
        });
    }
    updateRemove(how);
    context_.changed();
}

void Chip::updateRemove(const std::optional<Animation>& how) {
    remove_.show(removeShown(), how, context_.now());
}

QRectF Chip::inner() const {
    const QPointF middle = middle_.at(context_.now());
    return {middle.x() - kWidth / 2, middle.y() - kHeight / 2, kWidth, kHeight};
}

bool Chip::isOnRemove(const QPointF& point) const {
    return removeShown() && RemoveX::hit(point - removeCorner(inner()));
}

std::function<QList<MenuItem>()> Chip::menu() const {
    return [&ports = context_.ports, thing = thing_] { return ports.menu(thing); };
}

Hit Chip::removeHit() {
    Hit hit;
    hit.tap = lifetime_.guard([this] {
        if (shown()) context_.ports.remove(HeldThing(thing_));
    });
    hit.tapReach = RemoveX::kReach;
    hit.showPressed = lifetime_.guard([this](bool pressed) {
        remove_.press(pressed, context_.now());
        context_.changed();
    });
    hit.menu = menu();
    return hit;
}

Hit Chip::hit(Hit below) {
    Hit hit = std::move(below);
    hit.menu = menu();
    // A countdown has only a menu; everything else falls through.
    if (timer()) return hit;
    hit.tap = lifetime_.guard([this] {
        if (shown()) context_.ports.use(HeldThing(thing_));
    });
    if (const auto* file = std::get_if<QUrl>(&thing_)) hit.drag = Hit::File{*file, picture_};
    return hit;
}

double Chip::lastTick() const {
    return made_ + std::floor(context_.now() - made_);
}

double Chip::nextFrame() const {
    return timer() && !timer()->done ? lastTick() + 1 : std::numeric_limits<double>::infinity();
}

QString Chip::countdown() const {
    const double sinceTick = context_.now() - lastTick();
    const double left = timer()->fireAt - context_.clock.now() + sinceTick;
    const auto seconds = qint64(std::clamp(left, 0.0, 1e9));
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

Chip::Look Chip::look() const {
    const double glow = glow_.at(context_.now());
    const QColor plain = white(0.07), orange = accentOrange();
    if (timer() && timer()->done)
        return {QStringLiteral("bell.fill"), orange, QStringLiteral("done!"), kDone, orange, accentOrange(0.2)};
    if (timer()) return {QStringLiteral("timer"), white(0.85), countdown(), kCountdown, white(0.7), plain};
    QString symbol;
    if (const auto* bite = std::get_if<Bite>(&thing_))
        symbol = bite->text() ? QStringLiteral("text.quote") : QStringLiteral("link");
    const QColor fill = mixed(plain, accentOrange(0.16), glow);
    return {symbol, white(0.85), caption_, kCaption, white(0.6), fill, 0.45 * glow};
}

void Chip::drawGlyph(Canvas& canvas, const Look& look, const QImage& picture) {
    if (!look.symbol.isEmpty()) return canvas.symbol(look.symbol, {0, kGlyphMiddle}, kGlyphSize, look.symbolColor);
    constexpr double kReach = FilePicture::kSide / 2 + FilePicture::kMargin;
    canvas.picture(picture, QRectF(-kReach, kGlyphMiddle - kReach, 2 * kReach, 2 * kReach));
}

void Chip::compose(DisplayList& list) const {
    const double now = context_.now();
    const double glow = glow_.at(now);
    const QPointF middle = middle_.at(now);
    list.with(QTransform::fromTranslate(middle.x(), middle.y()), presence_.at(now), [&] {
        const double scale = 1 + kHoverScale * glow;
        const QRectF frame(-kWidth / 2, -kHeight / 2, kWidth, kHeight);
        const Look l = look();
        list.with(QTransform::fromScale(scale, scale), 1, [&] {
            const PictureKey key{l.symbol,         l.symbolColor, l.text, l.textStyle.size, l.textStyle.weight,
                                 l.textStyle.face, l.textColor,   l.fill, l.outline,        picture_};
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
        const QPointF corner = removeCorner(frame);
        list.with(QTransform::fromTranslate(corner.x(), corner.y()), 1,
                  [&] { remove_.compose(list, piece::chips + 2 * number_ + 1, now); });
    });
}
