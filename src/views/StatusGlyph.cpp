#include "views/StatusGlyph.h"

#include "creature/NotchModel.h"
#include "views/Colors.h"

namespace {

bool calledFor(const NotchModel& m, GlyphHints hints) {
    return m.attending() || hints.worried || m.needsYou || m.cameraInUse || m.micInUse || m.timerRung() ||
           m.whisper().has_value() || m.downloading || m.offline || hints.stretching;
}

QString symbolFor(const NotchModel& m, GlyphHints hints, int hour) {
    if (m.needsYou) return QStringLiteral("exclamationmark");
    if (m.timerRung()) return QStringLiteral("timer");
    if (m.cameraInUse) return QStringLiteral("eye.slash.fill");
    if (m.micInUse) return QStringLiteral("waveform");
    if (m.musicPlaying) return QStringLiteral("music.note");
    if (m.whisper().has_value()) return QStringLiteral("calendar");
    if (m.downloading) return QStringLiteral("arrow.down.circle");
    if (m.offline) return QStringLiteral("wifi.slash");
    if (m.updateAvailable->has_value()) return QStringLiteral("gift.fill");
    if (hints.stretching) return QStringLiteral("figure.walk");
    if (m.diskFull) return QStringLiteral("externaldrive.fill");
    if (m.charging) return QStringLiteral("bolt.fill");
    if (m.battery < 0.2) return QStringLiteral("battery.25");
    if (hour >= 6 && hour <= 10) return QStringLiteral("cup.and.saucer.fill");
    if (hour >= 21 || hour <= 5) return QStringLiteral("moon.stars.fill");
    return {};
}

QColor colorFor(const NotchModel& m, GlyphHints hints) {
    if (m.needsYou || m.timerRung() || m.whisper().has_value() || m.diskFull) return accentOrange();
    if (m.cameraInUse || m.micInUse || m.offline || m.downloading || hints.stretching) return white(1);
    if (m.updateAvailable->has_value()) return accentOrange();
    if (m.charging) return systemGreen();
    if (m.battery < 0.2) return accentOrange();
    return white(1);
}

}  // namespace

StatusGlyph statusGlyph(const NotchModel& m, GlyphHints hints, int localHour) {
    if (!calledFor(m, hints)) return {};
    const QString symbol = symbolFor(m, hints, localHour);
    return symbol.isEmpty() ? StatusGlyph{} : StatusGlyph{symbol, colorFor(m, hints)};
}
