#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <filesystem>

#include "FakePlayer.h"
#include "music/Applications.h"
#include "platform/linux/QtMainLoop.h"
#include "platform/linux/mpris/MediaApplications.h"
#include "platform/linux/mpris/MprisPlayers.h"
#include "support/XSession.h"

using namespace Qt::StringLiterals;

namespace {

QVariantMap song(const QString& title, const QString& artist, const QString& album = {}) {
    return {{u"xesam:title"_s, title}, {u"xesam:artist"_s, QStringList{artist}}, {u"xesam:album"_s, album}};
}

QVariantMap status(const QString& name) {
    return {{u"PlaybackStatus"_s, name}};
}

/// Watched players, on a bus of their own.
struct PlayersFixture {
    PlayersFixture() {
        players.onChange = [this] { ++changes; };
        players.watch(true);
    }
    testing::AssertionResult plays(const QString& player, const QString& track) {
        auto result = waitFor([&] { return title(player) == track; });
        if (!result) result << ": " << title(player).toStdString();
        return result;
    }
    QString title(const QString& player) {
        const auto track = players.track(player);
        return track ? track->title : u"no answer"_s;
    }
    /// The tabs' titles, those that are surely music with a star.
    QStringList tabs(const QString& browser) {
        std::optional<QStringList> titles;
        players.tabs(browser, [&](const auto& tabs) {
            titles.emplace(tabs ? QStringList() : QStringList{u"no answer"_s});
            for (const auto& tab : tabs.value_or(QList<Players::Track>()))
                titles->append(tab.title + (tab.isMusic ? u"*"_s : u""_s));
        });
        EXPECT_TRUE(waitFor([&] { return titles.has_value(); }));
        return *titles;
    }

    std::optional<TestBus> bus{std::in_place};
    QtMainLoop loop;
    MprisPlayers players{loop, nullptr};
    int changes = 0;
};

TEST(Players, AreKeptCurrentByTheirSignalsAlone) {
    std::optional<PlayersFixture> f(std::in_place);
    FakePlayer spotify(u"spotify"_s), vlc(u"vlc.instance7"_s), mirror(u"playerctld"_s);
    vlc.play(song(u"B"_s, u"b"_s));
    EXPECT_TRUE(f->plays(u"Music"_s, u"B — b"_s));
    spotify.play(song(u"A"_s, u"a"_s));
    EXPECT_TRUE(f->plays(u"Spotify"_s, u"A — a"_s));
    EXPECT_EQ(f->title(u"Music"_s), u"B — b"_s);
    FakePlayer mpd(u"mpd"_s);
    mpd.play(song(u"C"_s, u"c"_s));
    EXPECT_TRUE(f->plays(u"Music"_s, u"C — c"_s)) << "the one that began last";
    mpd.tell(status(u"Paused"_s));
    EXPECT_TRUE(f->plays(u"Music"_s, u"B — b"_s));
    vlc.tell(status(u"Paused"_s));
    EXPECT_TRUE(f->plays(u"Music"_s, {}));
    EXPECT_EQ(f->players.paused(u"Music"_s)->title, u"C — c"_s) << "the one that was last active";
    EXPECT_FALSE(f->players.paused(u"Spotify"_s));
    f->players.run(u"Music"_s, Players::Verb::playPause);
    f->players.seek(u"Music"_s, -5);
    EXPECT_TRUE(waitFor([&] {
        return mpd.commands() == (QStringList{u"PlayPause"_s, u"Seek-5000000"_s});
    })) << "the one that was last active: "
        << mpd.commands().join(u' ').toStdString();
    f->players.run(u"Spotify"_s, Players::Verb::nextTrack);
    f->players.run(u"Spotify"_s, Players::Verb::previousTrack);
    EXPECT_TRUE(waitFor([&] { return spotify.commands() == (QStringList{u"Next"_s, u"Previous"_s}); }));
    EXPECT_EQ(spotify.calls.size(), 4) << "asked once for what it is and once for what it plays";
    EXPECT_TRUE(mirror.calls.isEmpty());

    vlc.tell({}, {u"Metadata"_s});
    EXPECT_TRUE(waitFor([&] { return vlc.calls.size() == 3; })) << "what is no longer true is asked for";
    EXPECT_TRUE(f->players.isRunning(u"Spotify"_s));
    f->players.watch(false);
    EXPECT_FALSE(f->players.isRunning(u"Spotify"_s));
    f->players.watch(true);
    EXPECT_TRUE(f->plays(u"Spotify"_s, u"A — a"_s)) << "that was there before";
}

TEST(Players, TellWhatTheyPlayInAPlainLine) {
    PlayersFixture f;
    FakePlayer player(u"mine"_s);
    const QString endless(1 << 20, u'x'), cut = endless.left(300);
    const struct {
        QVariantMap metadata;
        QString line;
    } cases[] = {
        {song(u"A"_s, {}), u"A"_s},
        {song(u"\tA\n\u202eB\u0007"_s, u"\u2066b"_s), u"A B — b"_s},
        {song(endless, endless), cut + u" — "_s + cut},
        {{{u"xesam:title"_s, 5}, {u"xesam:url"_s, u"file:///m/My%0A%E2%80%AE%20song.ogg"_s}}, u"My song.ogg"_s},
        {{{u"xesam:title"_s, u"A"_s}, {u"xesam:artist"_s, u"one text"_s}}, u"A — one text"_s},
        {{{u"xesam:title"_s, u"A"_s}, {u"xesam:artist"_s, QStringList{u"b"_s, {}, u"c"_s}}}, u"A — b, c"_s},
        {{{u"xesam:title"_s, QVariantMap()}, {u"xesam:artist"_s, QVariantList{1, 2}}}, u"mine"_s},
        {{}, u"mine"_s},
    };
    for (const auto& [metadata, line] : cases) {
        player.play(metadata);
        EXPECT_TRUE(f.plays(u"Music"_s, line));
    }
    player.tell({{u"Metadata"_s, u"none"_s}, {u"PlaybackStatus"_s, 7}});
    EXPECT_TRUE(f.plays(u"Music"_s, {}));
    const QString picture = u"data:image/png;base64,"_s + endless.left(400'000);
    const std::pair<QString, QString> covers[] = {{u"file:///a%20b.png"_s, u"file:///a%20b.png"_s},
                                                  {u"/a b.png"_s, u"file:///a%20b.png"_s},
                                                  {picture, picture},
                                                  {picture + endless, {}},
                                                  {u"https://a.example/"_s + endless, {}}};
    for (const auto& [told, cover] : covers) {
        player.play({{u"mpris:artUrl"_s, told}});
        const auto known = [&] { return f.players.track(u"Music"_s)->cover.toString(QUrl::FullyEncoded); };
        EXPECT_TRUE(waitFor([&] { return known() == cover; })) << told.left(40).toStdString();
    }
}

TEST(Players, OfABrowserCountAsTabsOfMusicSites) {
    PlayersFixture f;
    const QString chrome = u"Google Chrome"_s;
    FakePlayer chromium(u"chromium.instance1"_s, {{u"Identity"_s, u"Chromium"_s}});
    // Chromium tells one thing after the other, the cover last.
    chromium.play({});
    for (const char* album : {"", "Sea"}) chromium.play(song(u"Tidal"_s, u"Waves"_s, QLatin1String(album)));
    const auto gives = [&](const QStringList& titles) { return waitFor([&] { return f.tabs(chrome) == titles; }); };
    EXPECT_TRUE(gives({u"Tidal — Waves*"_s}));
    EXPECT_EQ(f.title(u"Music"_s), QString()) << "a browser is not a player";
    chromium.play(song(u"Moon - YouTube Music"_s, {}));
    EXPECT_TRUE(gives({u"Moon - YouTube Music"_s}));
    QVariantMap bandcamp = song(u"Moon"_s, {});
    bandcamp.insert(u"xesam:url"_s, u"https://band.bandcamp.com/track/moon"_s);
    chromium.play(bandcamp);
    EXPECT_TRUE(gives({u"Moon*"_s}));
    EXPECT_TRUE(f.players.canRun(chrome) && !f.players.canRun(u"Safari"_s));
    f.players.run(chrome, Players::Verb::playPause);
    EXPECT_TRUE(waitFor([&] { return chromium.commands() == QStringList{u"PlayPause"_s}; }));
    chromium.tell(status(u"Paused"_s));
    EXPECT_TRUE(gives({}));
    EXPECT_EQ(f.players.paused(chrome)->title, u"Moon"_s);
    EXPECT_TRUE(f.players.canRun(chrome));
    for (const QString& name : playerApps + browserApps) EXPECT_EQ(mediaApplication(name).name, name);

    const struct {
        QString service, desktopEntry, identity, application;
    } names[] = {{u"chromium.instance1"_s, {}, u"Brave"_s, u"Brave Browser"_s},
                 {u"chromium.instance1"_s, {}, {}, chrome},
                 {u"chromium.instance1"_s, {}, u"Microsoft Edge"_s, u"Microsoft Edge"_s},
                 {u"plasma-browser-integration"_s, u"vivaldi-stable"_s, u"Vivaldi"_s, u"Arc"_s},
                 {u"firefox.instance_1_7"_s, u"firefox"_s, u"Mozilla Firefox"_s, u"Safari"_s},
                 {u"epiphany.instance2"_s, u"org.gnome.Epiphany"_s, u"Web"_s, u"Safari"_s},
                 {u"kdeconnect.mpris_1"_s, {}, u"Firefox"_s, u"Music"_s},
                 {u"player"_s, {}, u"Zen Music"_s, u"Music"_s},
                 {u"spotify"_s, u"spotify"_s, u"Spotify"_s, u"Spotify"_s},
                 {u"spotifyd"_s, {}, u"spotifyd"_s, u"Music"_s}};
    for (const auto& [service, desktopEntry, identity, application] : names) {
        const QString name = u"org.mpris.MediaPlayer2."_s + service;
        EXPECT_EQ(applicationOfPlayer(name, desktopEntry, identity).name, application) << service.toStdString();
    }
    const struct {
        QString browser, window, tab;
    } titles[] = {{chrome, u"A - Deezer - Chromium"_s, u"A - Deezer"_s},
                  {chrome, u"A - Deezer – Google Chrome Beta"_s, u"A - Deezer"_s},
                  {chrome, u"A - Deezer - Chromium (Incognito)"_s, u"A - Deezer - Chromium (Incognito)"_s},
                  {u"Microsoft Edge"_s, u"A - Deezer and 3 more pages - Microsoft Edge"_s, u"A - Deezer"_s},
                  {u"Safari"_s, u"A - Deezer — Mozilla Firefox"_s, u"A - Deezer"_s},
                  {u"Safari"_s, u"A - Deezer"_s, u"A - Deezer"_s}};
    for (const auto& [browser, window, tab] : titles)
        EXPECT_EQ(tabTitle(window, mediaApplication(browser)), tab) << window.toStdString();
}

TEST(Players, ThatHangHoldUpNobodyElse) {
    PlayersFixture f;
    FakePlayer hung(u"spotify"_s), vlc(u"vlc"_s);
    hung.answer = [](const QDBusMessage&) { return QDBusMessage(); };
    vlc.play(song(u"B"_s, u"b"_s));
    EXPECT_TRUE(f.plays(u"Music"_s, u"B — b"_s));
    EXPECT_EQ(f.title(u"Spotify"_s), QString()) << "not known yet";
    EXPECT_TRUE(waitFor([&] { return !f.players.track(u"Spotify"_s); }, 3)) << "after a second it has failed";
    const auto asked = hung.calls.size();
    EXPECT_TRUE(waitFor([&] { return hung.calls.size() > asked; })) << "and is asked again";
    hung.play(song(u"A"_s, u"a"_s));
    EXPECT_TRUE(f.plays(u"Spotify"_s, u"A — a"_s)) << "until it says something";
}

TEST(Players, LeaveNothingOpenWhenTheyAreNotWatched) {
    const auto descriptors = [] { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); };
    PlayersFixture f;
    FakePlayer hung(u"hung"_s);
    hung.answer = [](const QDBusMessage&) { return QDBusMessage(); };
    ASSERT_TRUE(waitFor([&] { return f.players.isRunning(u"Music"_s); }));
    const auto before = descriptors();
    for (int i = 0; i < 20; ++i) {
        f.players.watch(false);
        f.players.watch(true);
        EXPECT_TRUE(waitFor([&] { return f.players.isRunning(u"Music"_s); }));
    }
    EXPECT_TRUE(waitFor([&] { return descriptors() <= before; }))
        << before << " descriptors before, now " << descriptors();
}

TEST(Players, ThatFloodWithSignalsAreHeardFiveTimesASecond) {
    PlayersFixture f;
    FakePlayer noisy(u"noisy"_s);
    noisy.play(song(u"0"_s, {}));
    ASSERT_TRUE(f.plays(u"Music"_s, u"0"_s));
    f.changes = 0;
    QElapsedTimer time;
    time.start();
    for (int i = 1; i <= 1000; ++i) noisy.tell({{u"Volume"_s, i}});
    noisy.play(song(u"quiet"_s, {}));
    EXPECT_TRUE(f.plays(u"Music"_s, u"quiet"_s));
    EXPECT_LE(f.changes, 1) << "nobody asked for the volume";
    for (int i = 1; i <= 1000; ++i) noisy.play(song(QString::number(i), {}));
    EXPECT_TRUE(f.plays(u"Music"_s, u"1000"_s));
    EXPECT_LE(f.changes, 2 + time.elapsed() / 200);
}

TEST(Players, ComeAndGoWithTheirBus) {
    PlayersFixture f;
    {
        std::list<FakePlayer> crowd;
        for (int i = 0; i < 100; ++i) crowd.emplace_back(u"p%1"_s.arg(i)).play(song(QString::number(i), {}));
        EXPECT_TRUE(waitFor([&] { return !crowd.back().calls.isEmpty(); }));
        crowd.back().play(song(u"last"_s, {}));
        EXPECT_TRUE(f.plays(u"Music"_s, u"last"_s));
    }
    EXPECT_TRUE(waitFor([&] { return !f.players.isRunning(u"Music"_s); }));
    {
        FakePlayer gone(u"gone"_s);
        gone.answer = [&](const QDBusMessage&) { return f.bus.reset(), QDBusMessage(); };
        EXPECT_TRUE(waitFor([&] { return !f.bus; })) << "in the middle of a call";
    }
    EXPECT_TRUE(waitFor([&] { return !f.players.isRunning(u"Music"_s); }));
    f.bus.emplace();
    FakePlayer back(u"back"_s);
    back.play(song(u"B"_s, {}));
    EXPECT_TRUE(f.plays(u"Music"_s, u"B"_s));
}

}  // namespace
