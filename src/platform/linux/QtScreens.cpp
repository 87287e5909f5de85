#include "platform/linux/QtScreens.h"

#include <QGuiApplication>
#include <QRegularExpression>
#include <QScreen>

#include "platform/linux/NotchedPanels.h"
#include "platform/linux/ScreenCoordinates.h"

QtScreens::QtScreens(const Preferences& preferences, MainLoop& loop) : preferences_(preferences), loop_(loop) {
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

// One change of the desktop comes as several signals in a row.
void QtScreens::changed() {
    announcement_ = loop_.after(0, [this] {
        if (onChange) onChange();
    });
}

QList<Screen> QtScreens::screens() const {
    QList<Screen> screens;
    for (const QScreen* screen : QGuiApplication::screens()) {
        // While the last screen is unplugged Qt stands in with one that has no size.
        if (screen->geometry().isEmpty()) continue;
        const bool main = screen == QGuiApplication::primaryScreen();
        Screen found{toModel(QRectF(screen->geometry())), {}, {}, main};
        if (const auto size = housing(*screen, main)) {
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

std::optional<QSizeF> QtScreens::housing(const QScreen& screen, bool main) const {
    if (const auto setting = preferences_.text(QStringLiteral("glimmet.notch"))) {
        if (*setting == QLatin1String("none")) return {};
        static const QRegularExpression form(QStringLiteral("^([1-9]\\d{1,3})x([1-9]\\d{0,2})$"));
        const auto match = form.match(*setting);
        if (match.hasMatch()) {
            const QSizeF wanted(match.captured(1).toDouble(), match.captured(2).toDouble());
            const QSize size = screen.geometry().size();
            return main && wanted.width() < size.width() && wanted.height() < size.height() ? std::optional(wanted)
                                                                                            : std::nullopt;
        }
    }
    const QSize pixels = nativeGeometry(screen).size().toSize();
    for (const NotchedPanel& panel : kNotchedPanels) {
        if (panel.resolution == pixels) return QSizeF(panel.housing) / screen.devicePixelRatio();
    }
    return {};
}
