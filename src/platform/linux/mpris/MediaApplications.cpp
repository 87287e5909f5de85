#include "platform/linux/mpris/MediaApplications.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QString kPrefix = u"org.mpris.MediaPlayer2."_s;

QStringList words(const char16_t* list) {
    return QString::fromUtf16(list).split(u';', Qt::SkipEmptyParts);
}

bool shares(const QStringList& a, const QStringList& b) {
    return std::ranges::any_of(a, [&b](const QString& word) { return b.contains(word); });
}

}  // namespace

// Browsers without a name of their own in the port share that of another one.
const QList<MediaApplication>& mediaApplications() {
    static const QList<MediaApplication> rows{
        {u"Google Chrome"_s,
         words(u"chrome;google-chrome;google-chrome-beta;google-chrome-unstable;chromium;chromium-browser;ungoogled-"
               "chromium"),
         words(u"google-chrome;google-chrome-beta;google-chrome-unstable;chromium;chromium-browser;chromium-freeworld"),
         words(u" - Google Chrome; - Chromium")},
        {u"Brave Browser"_s, words(u"brave;brave-browser"),
         words(u"brave-browser;brave-browser-beta;brave-browser-nightly"), words(u" - Brave")},
        {u"Arc"_s, words(u"vivaldi;vivaldi-stable;opera"),
         words(u"vivaldi-stable;vivaldi-snapshot;vivaldi;opera;opera-beta;opera-developer"),
         words(u" - Vivaldi; - Opera")},
        {u"Microsoft Edge"_s, words(u"edge;microsoft-edge;msedge"),
         words(u"microsoft-edge;microsoft-edge-beta;microsoft-edge-dev"), words(u" - Microsoft Edge")},
        {u"Safari"_s, words(u"firefox;firefox-esr;librewolf;waterfox;floorp;zen;epiphany;org.gnome.epiphany"),
         words(u"firefox;firefox-esr;navigator;librewolf;waterfox;floorp;zen;zen-alpha;epiphany;org.gnome.epiphany"),
         words(u" — Mozilla Firefox; — LibreWolf; — Waterfox; — Floorp; — Zen Browser")},
        {u"Spotify"_s, words(u"spotify;com.spotify.client"), {}, {}},
        {u"Music"_s, {}, {}, {}},
    };
    return rows;
}

const MediaApplication& mediaApplication(const QString& name) {
    return *std::ranges::find(mediaApplications(), name, &MediaApplication::name);
}

// Browsers made of Chromium often keep its bus name, so that counts last.
const MediaApplication& applicationOfPlayer(const QString& service, const QString& desktopEntry,
                                            const QString& identity) {
    const auto& rows = mediaApplications();
    const QString own = service.mid(kPrefix.size()).section(u'.', 0, 0);
    for (const QStringList& names :
         {QStringList(desktopEntry.toLower()), identity.toLower().split(u' '), QStringList(own.toLower())}) {
        for (const MediaApplication& row : rows) {
            if (shares(names, row.media)) return row;
        }
    }
    return rows.last();
}
