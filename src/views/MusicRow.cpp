#include "views/MusicRow.h"

#include "views/Colors.h"
#include "views/PieceIds.h"

using namespace Qt::StringLiterals;

namespace {

constexpr double kAppearScale = 0.92;
constexpr double kGap = 8;
constexpr double kTextWidth = 132;
constexpr double kMiddle = AlbumArt::kSide / 2;  // of the row, from its top
const TextStyle kTextStyle{9.5, QFont::Medium};

}  // namespace

MusicRow::MusicRow(const ViewContext& context)
    : context_(context),
      model_(context.model),
      buttons_{{{context.animations, {}, u"previous"_s},
                {context.animations, {}, u"playpause"_s},
                {context.animations, {}, u"next"_s}}} {}

bool MusicRow::wanted() const {
    return model_.hovering && model_.musicPlaying && !model_.screenLocked && !model_.hasHeld() &&
           !model_.dropTargeted && !model_.dragNear;
}

double MusicRow::width() const {
    return AlbumArt::kSide + (track_.isEmpty() ? 0 : kGap + kTextWidth) + kGap + 3 * MusicBtn::kWidth;
}

void MusicRow::update(const std::optional<Animation>& how) {
    const double now = context_.now();
    // A cover that comes with the row does not fade in by itself.
    const auto coverCurve = presence_.at(now) > 0 ? how : std::nullopt;
    presence_.aim(wanted() ? 1 : 0, how, now);
    // While it fades out it keeps what it showed.
    if (wanted()) {
        track_ = Canvas::elided(model_.musicTrack->value_or(QString()), kTextWidth, kTextStyle, Qt::ElideRight);
        paused_ = model_.musicPaused;
        art_.show(model_.artwork, coverCurve, now);
        double x = width() / 2 - 2.5 * MusicBtn::kWidth;
        for (MusicBtn& button : buttons_) {
            button.setMiddle({x, kMiddle});
            x += MusicBtn::kWidth;
        }
    }
    hover();
}

void MusicRow::pointerMoved(const std::optional<QPointF>& point) {
    pointer_ = point;
    hover();
}

void MusicRow::hover() {
    for (MusicBtn& button : buttons_)
        button.setHover(wanted() && pointer_ && button.contains(*pointer_), context_.now());
}

Hit MusicRow::hit(const QPointF& point, Hit below) {
    if (!wanted() || model_.asleep) return below;
    for (const MusicBtn& button : buttons_) {
        if (button.contains(point))
            below.tap = [&ports = context_.ports, command = button.command()] { ports.onMusicCommand(command); };
    }
    return below;
}

void MusicRow::compose(DisplayList& list) const {
    const double now = context_.now(), presence = presence_.at(now);
    if (presence <= 0) return;
    const double scale = kAppearScale + (1 - kAppearScale) * presence, left = -width() / 2;
    list.with(QTransform::fromScale(scale, scale), presence, [&] {
        list.with(QTransform::fromTranslate(left + AlbumArt::kSide / 2, kMiddle), 1, [&] { art_.compose(list, now); });
        const QPointF start(left + AlbumArt::kSide + kGap, kMiddle);
        const double line = kTextStyle.lineHeight();
        list.add(piece::musicTrack, {start.x(), start.y() - line / 2, kTextWidth, line}, {start, track_},
                 [start, track = track_](Canvas& canvas) {
                     canvas.text(track, start, kTextStyle, white(0.65), Qt::AlignLeft);
                 });
        buttons_[0].compose(list, piece::musicButtons, u"backward.fill"_s, now);
        buttons_[1].compose(list, piece::musicButtons + 1, paused_ ? u"play.fill"_s : u"pause.fill"_s, now);
        buttons_[2].compose(list, piece::musicButtons + 2, u"forward.fill"_s, now);
    });
}
