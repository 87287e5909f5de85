#include "platform/linux/mpris/MediaApplications.h"

#include <QRegularExpression>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QString kPrefix = u"org.mpris.MediaPlayer2."_s;

QStringList words(const char16_t* list) {
    return QString::fromUtf16(list).split(u';', Qt::SkipEmptyParts);
}

}  // namespace

// Browsers without a name of their own in the port share that of another one.
const QList<MediaApplication>& mediaApplications() {
    static const QList<MediaApplication> rows{
        {u"Google Chrome"_s,
         words(
             u"chrome;google-chrome;google chrome;google-chrome-beta;google-chrome-unstable;chromium;chromium-browser"),
         words(u"google-chrome;google-chrome-beta;google-chrome-unstable;chromium;chromium-browser;chromium-freeworld"),
         words(u"Google Chrome;Chromium")},
        {u"Brave Browser"_s, words(u"brave;brave-browser"),
         words(u"brave-browser;brave-browser-beta;brave-browser-nightly"), words(u"Brave")},
        {u"Arc"_s, words(u"vivaldi;vivaldi-stable;opera"),
         words(u"vivaldi-stable;vivaldi-snapshot;vivaldi;opera;opera-beta;opera-developer"), words(u"Vivaldi;Opera")},
        {u"Microsoft Edge"_s, words(u"edge;microsoft edge;microsoft-edge;msedge"),
         words(u"microsoft-edge;microsoft-edge-beta;microsoft-edge-dev"), words(u"Microsoft Edge")},
        {u"Safari"_s,
         words(u"firefox;mozilla firefox;firefox-esr;librewolf;waterfox;floorp;zen;epiphany;org.gnome.epiphany"),
         words(
             u"firefox;firefox-esr;firefox-nightly;firefox-aurora;librewolf;waterfox;floorp;zen;zen-beta;zen-twilight;"
             "epiphany;org.gnome.epiphany"),
         words(u"Mozilla Firefox;Firefox;LibreWolf;Waterfox;Floorp;Ablaze Floorp;Zen Browser")},
        {u"Spotify"_s, words(u"spotify;com.spotify.client"), {}, {}},
        {u"Music"_s, {}, {}, {}},
    };
    return rows;
}

const MediaApplication& mediaApplication(const QString& name) {
    return *std::ranges::find(mediaApplications(), name, &MediaApplication::name);
}

// Such as "Song - YouTube Music - Chromium Beta"; Edge counts the window's other tabs.
QString tabTitle(const QString& windowTitle, const MediaApplication& browser) {
    if (browser.titles.isEmpty()) return windowTitle;
    const QRegularExpression ending(
        u"(?: and \\d+ more pages?)? [-–—] (?:%1)(?: (?:Beta|Dev|Canary|Nightly))?$"_s.arg(browser.titles.join(u'|')));
    return windowTitle.left(windowTitle.indexOf(ending));
}

// Browsers made of Chromium often keep its bus name, so that counts last. What a telephone plays is not this browser's.
const MediaApplication& applicationOfPlayer(const QString& service, const QString& desktopEntry,
                                            const QString& identity) {
    const auto& rows = mediaApplications();
    const QString own = service.mid(kPrefix.size()).section(u'.', 0, 0).toLower();
    if (own == u"kdeconnect") return rows.last();
    for (const QString& name : {desktopEntry.toLower(), identity.toLower(), own}) {
        const auto row = std::ranges::find_if(rows, [&](const auto& known) { return known.media.contains(name); });
        if (row != rows.end()) return *row;
    }
    return rows.last();
}
