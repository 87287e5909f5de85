#include "platform/linux/QtScreens.h"

#include <QGuiApplication>
#include <QRegularExpression>
#include <QScreen>
#include <algorithm>
#include <cstdlib>

#include "platform/linux/NotchedPanels.h"
#include "platform/linux/ScreenCoordinates.h"

namespace {
/// The name of the screen that "glimmet.notch" refers to.
const QString kHousingScreen = QStringLiteral("glimmet.notchScreen");
// A screen's size in points is rounded, so the pixel size computed from it may be off by this much.
constexpr int kRounding = 2;

/// Whether this is a laptop's built-in screen, by the name of its connector.
bool isBuiltIn(const QScreen& screen) {
    static const QRegularExpression connectors(QStringLiteral("^(eDP|LVDS|DSI)"),
                                               QRegularExpression::CaseInsensitiveOption);
    return connectors.match(screen.name()).hasMatch();
}

/// Parses "WIDTHxHEIGHT"; empty for anything else.
QSizeF sizeIn(const QString& preference) {
    static const QRegularExpression form(QStringLiteral("^([1-9]\\d{1,3})x([1-9]\\d{0,2})$"));
    const auto match = form.match(preference);
    return match.hasMatch() ? QSizeF(match.captured(1).toDouble(), match.captured(2).toDouble()) : QSizeF();
}

bool areClose(QSize a, QSize b) {
    return std::abs(a.width() - b.width()) <= kRounding && std::abs(a.height() - b.height()) <= kRounding;
}
}  // namespace

QtScreens::QtScreens(Preferences& preferences, MainLoop& loop) : preferences_(preferences), loop_(loop) {
    for (QScreen* screen : QGuiApplication::screens()) watch(screen);
    QObject::connect(qGuiApp, &QGuiApplication::screenAdded, &context_, [this](QScreen* screen) {
        watch(screen);
        changed();
    });
    QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, &context_, [this] { changed(); });
    QObject::connect(qGuiApp, &QGuiApplication::primaryScreenChanged, &context_, [this] { changed(); });
}

void QtScreens::watch(QScreen* screen) {
    QObject::connect(screen, &QScreen::geometryChanged, &context_, [this] { changed(); });
    QObject::connect(screen, &QScreen::physicalDotsPerInchChanged, &context_, [this] { changed(); });
}

// Merges the several signals of one change.
void QtScreens::changed() {
    announcement_ = loop_.after(0, [this] {
        if (onChange) onChange();
    });
}

QList<Screen> QtScreens::screens() const {
    QList<Screen> screens;
    for (const QScreen* screen : QGuiApplication::screens()) {
        // When the last screen is unplugged, Qt substitutes one without a size.
        if (screen->geometry().isEmpty()) continue;
        const bool main = screen == QGuiApplication::primaryScreen();
        Screen found{toModel(QRectF(screen->geometry())), {}, {}, main, nativeGeometry(*screen)};
        if (const auto size = housing(*screen)) {
            const QRectF& frame = found.frame;
            const double side = (frame.width() - size->width()) / 2;
            const double low = frame.bottom() - size->height();
            found.auxiliaryTopLeftArea = QRectF(frame.left(), low, side, size->height());
            found.auxiliaryTopRightArea = QRectF(frame.right() - side, low, side, size->height());
        }
        screens.append(found);
    }
    return screens;
}

// Stores the screen's name, since the preference is meant for one screen, not for whichever is the main one later.
const QScreen* QtScreens::housingScreen() const {
    const QList<QScreen*> screens = QGuiApplication::screens();
    const auto first = [&](auto fits) -> const QScreen* {
        const auto found = std::find_if(screens.begin(), screens.end(), fits);
        return found == screens.end() ? nullptr : *found;
    };
    if (const auto name = preferences_.text(kHousingScreen))
        return first([&](const QScreen* screen) { return screen->name() == *name; });
    const QScreen* panel = first([](const QScreen* screen) { return isBuiltIn(*screen); });
    if (!panel) panel = QGuiApplication::primaryScreen();
    if (panel && !panel->name().isEmpty()) preferences_.setText(kHousingScreen, panel->name());
    return panel;
}

std::optional<QSizeF> QtScreens::housing(const QScreen& screen) const {
    if (const auto setting = preferences_.text(QStringLiteral("glimmet.notch"))) {
        if (*setting == QLatin1String("none")) return {};
        if (const QSizeF wanted = sizeIn(*setting); !wanted.isEmpty()) {
            const QSize size = screen.geometry().size();
            const bool fits = wanted.width() < size.width() && wanted.height() < size.height();
            return fits && &screen == housingScreen() ? std::optional(wanted) : std::nullopt;
        }
    }
    const QSize pixels = nativeGeometry(screen).size().toSize();
    for (const NotchedPanel& panel : kNotchedPanels) {
        if (areClose(panel.resolution, pixels)) return QSizeF(panel.housing) / screen.devicePixelRatio();
    }
    return {};
}
