#include "views/StatusGlyph.h"

#include "creature/NotchModel.h"
#include "views/Colors.h"

namespace {

bool calledFor(const NotchModel& model, GlyphHints hints) {
    return model.attending() || hints.worried || model.needsYou || model.cameraInUse || model.micInUse ||
           model.timerRung() || model.whisper().has_value() || model.downloading || model.offline || hints.stretching;
}

QString symbolFor(const NotchModel& model, GlyphHints hints, int hour) {
    if (model.needsYou) return QStringLiteral("exclamationmark");
    if (model.timerRung()) return QStringLiteral("timer");
    if (model.cameraInUse) return QStringLiteral("eye.slash.fill");
    if (model.micInUse) return QStringLiteral("waveform");
    if (model.musicPlaying) return QStringLiteral("music.note");
    if (model.whisper().has_value()) return QStringLiteral("calendar");
    if (model.downloading) return QStringLiteral("arrow.down.circle");
    if (model.offline) return QStringLiteral("wifi.slash");
    if (model.updateAvailable->has_value()) return QStringLiteral("gift.fill");
    if (hints.stretching) return QStringLiteral("figure.walk");
    if (model.diskFull) return QStringLiteral("externaldrive.fill");
    if (model.charging) return QStringLiteral("bolt.fill");
    if (model.battery < 0.2) return QStringLiteral("battery.25");
    if (hour >= 6 && hour <= 10) return QStringLiteral("cup.and.saucer.fill");
    if (hour >= 21 || hour <= 5) return QStringLiteral("moon.stars.fill");
    return {};
}

QColor colorFor(const NotchModel& model, GlyphHints hints) {
    if (model.needsYou || model.timerRung() || model.whisper().has_value() || model.diskFull) return accentOrange();
    if (model.cameraInUse || model.micInUse || model.offline || model.downloading || hints.stretching) return white(1);
    if (model.updateAvailable->has_value()) return accentOrange();
    if (model.charging) return systemGreen();
    if (model.battery < 0.2) return accentOrange();
    return white(1);
}

}  // namespace

StatusGlyph statusGlyph(const NotchModel& model, GlyphHints hints, int localHour) {
    if (!calledFor(model, hints)) return {};
    const QString symbol = symbolFor(model, hints, localHour);
    return symbol.isEmpty() ? StatusGlyph{} : StatusGlyph{symbol, colorFor(model, hints)};
}
