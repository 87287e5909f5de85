#include "music/CatalogueSearch.h"
#include "music/Music.h"
#include "support/TestFolder.h"

namespace {

const QString kSearch = "http://127.0.0.1:9/search?term=%1&entity=song&limit=3";

struct ArtworkFixture : MusicFixture {
    ArtworkFixture() { preferences.setText("glimmet.endpoints.musicSearch", "http://127.0.0.1:9"); }

    /// Whether a cover was found.
    bool lookUp(const Artwork::Request& request) {
        std::optional<bool> found;
        artwork.lookUpArtwork(request, [&](const std::optional<QImage>& image) {
            EXPECT_FALSE(found) << "twice";
            found = image.has_value();
        });
        EXPECT_FALSE(found) << "not before it returns";
        for (int i = 0; i < 10; ++i) loop.drain(), http.answer();
        EXPECT_TRUE(found);
        return found.value_or(false);
    }
    bool lookUp(const QString& track, const QUrl& cover) { return lookUp({track, "Music", false, cover}); }
    qsizetype decoded() const { return worker.requests.size(); }
};

TEST(Artwork, ComesFromWhereThePlayerSays) {
    ArtworkFixture f;
    const TestFolder folder;
    folder.write("cover.jpg", "jpeg");
    ASSERT_EQ(::mkfifo(folder.path("pipe").constData(), 0600), 0);
    f.http.pages["https://a.example/c"] = "jpeg";
    const auto file = [&folder](const char* name) { return "file://" + QString::fromUtf8(folder.path(name)); };
    const QPair<QString, bool> cases[] = {{file("cover.jpg"), true},
                                          {"https://a.example/c", true},
                                          {"data:image/png;base64,AAEC", true},
                                          {"", false},
                                          {file("missing"), false},
                                          {file("pipe"), false},
                                          {"file:///dev/zero", false},
                                          {"https://a.example/missing", false},
                                          {"data:text/html,x", false},
                                          {"ftp://a.example/c", false}};
    int number = 0;
    for (const auto& [cover, found] : cases) {
        EXPECT_EQ(f.lookUp(QString::number(++number), QUrl(cover)), found) << cover.toStdString();
    }
    EXPECT_EQ(f.worker.requests.first(), (QStringList{"thumbnail", "96"}));
    f.worker.answer.reset();
    EXPECT_FALSE(f.lookUp("HTML", QUrl("https://a.example/c")));
}

TEST(Artwork, OfABrowsersTrackIsSearched) {
    ArtworkFixture f;
    f.lookUp({"Song", "Music"});
    EXPECT_TRUE(f.http.requests.isEmpty()) << "only for browsers";

    f.http.pages[kSearch.arg("Artist%20-%20Song")] = R"({"results": [
        {"trackName": "", "artworkUrl100": "https://c.example/1/100x100bb.jpg"},
        {"trackName": "Song", "artworkUrl100": "https://c.example/2/100x100bb.jpg"},
        {"trackName": "Song", "artworkUrl100": "https://c.example/3/100x100bb.jpg"}]})";
    f.http.pages["https://c.example/3/300x300bb.jpg"] = "jpeg";
    EXPECT_TRUE(f.lookUp({"Artist - Song (Official Video)", "Arc", true}));
    EXPECT_EQ(f.http.requests, (QStringList{kSearch.arg("Artist%20-%20Song"), "https://c.example/2/300x300bb.jpg",
                                            "https://c.example/3/300x300bb.jpg"}))
        << "a cover that cannot be fetched is skipped";
    f.http.pages[kSearch.arg("A%2BB%26C")] = f.http.pages[kSearch.arg("Artist%20-%20Song")];
    EXPECT_FALSE(f.lookUp({"A+B&C", "Arc", true, QUrl("https://a.example/gone")})) << "no result is plausible";
    EXPECT_EQ(f.http.requests.mid(3), (QStringList{"https://a.example/gone", kSearch.arg("A%2BB%26C")}));
    f.http.pages[kSearch.arg("Huge")] =
        R"({"results": [{"trackName": "Huge", "artworkUrl100": "https://c.example/3/300x300bb.jpg"}]})" +
        QByteArray(1 << 18, ' ');
    EXPECT_FALSE(f.lookUp({"Huge", "Arc", true}));
}

TEST(Artwork, IsCachedWithItsFailures) {
    ArtworkFixture f;
    const QUrl cover("data:image/png;base64,AAEC"), late("https://a.example/late");
    for (int i = 0; i < 61; ++i) EXPECT_TRUE(f.lookUp(QString::number(i), cover));
    EXPECT_TRUE(f.lookUp("0", cover) && f.lookUp("60", cover));
    EXPECT_EQ(f.decoded(), 61);
    f.lookUp("61", cover);  // empties the cache before it is stored
    f.lookUp("61", {});
    EXPECT_EQ(f.decoded(), 62);
    f.lookUp("60", cover);
    EXPECT_EQ(f.decoded(), 63);

    EXPECT_FALSE(f.lookUp("x", late));
    f.http.pages[late.toString()] = "jpeg";
    EXPECT_FALSE(f.lookUp("x", late)) << "a failure, too";
    EXPECT_TRUE(f.lookUp("x", cover)) << "until there is another cover";
    EXPECT_TRUE(f.lookUp("x", late)) << "which need not be the right one";
    f.http.pages.clear();
    EXPECT_FALSE(f.lookUp("x", QUrl("https://a.example/gone")));
    EXPECT_TRUE(f.lookUp("x", {})) << "a failure does not drive out a cover";
}

TEST(Artwork, OfAnEarlierTrackOrCoverIsDropped) {
    ArtworkFixture f;
    const auto answer = [&f] { f.loop.drain(), f.http.answer(), f.loop.drain(); };
    const QUrl one("https://a.example/1"), other("data:image/png;base64,AAEC");
    f.http.pages[one.toString()] = "jpeg";
    f.play("Music", "A", one);
    f.music.startMusicWatch();
    f.play("Music", "B");
    f.change();
    answer();
    EXPECT_FALSE(f.m.artwork->has_value());
    f.play("Music", "B", one);
    f.change();
    answer();
    ASSERT_TRUE(f.m.artwork->has_value()) << "a player that tells the cover a little later";
    const qint64 seen = f.m.artwork->value().cacheKey();
    f.pass(8);
    EXPECT_EQ(f.m.artwork->value().cacheKey(), seen);
    EXPECT_EQ(f.http.requests.size(), 2) << "not again for the same";

    f.play("Music", "");
    f.open("Arc", {"C - Deezer"});
    f.pass(20);
    ASSERT_FALSE(f.m.artwork->has_value());
    EXPECT_EQ(f.http.requests.last(), kSearch.arg("C"));
    f.players.open["Arc"] = QList<Players::Track>{{"C", other}};
    f.change();
    f.loop.drain();
    EXPECT_TRUE(f.m.artwork->has_value()) << "while the catalogue is still asked";
    answer();
    EXPECT_TRUE(f.m.artwork->has_value()) << "which says too late that there is none";
    f.players.open["Arc"] = QList<Players::Track>{{"D - Deezer", {}, false}};
    f.change();
    f.pass(1);
    f.players.open["Arc"] = QList<Players::Track>{{"D", other}};
    f.change();
    f.pass(8);
    EXPECT_TRUE(f.m.artwork->has_value());
    EXPECT_EQ(f.http.requests.last(), kSearch.arg("C")) << "no need to ask the catalogue";
}

TEST(CatalogueSearch, FindsPlausibleCoversOnly) {
    EXPECT_EQ(normalizeForMatch(" Bl\u00fce-Sk\u0301Y 2! "), "bluesky2");
    EXPECT_EQ(searchTerm("Song (official video)"), "Song (official video)");
    const QPair<QByteArray, bool> cases[] = {
        {R"([{"trackName": "Song", "artworkUrl100": "https://c.example/a"}])", true},
        {R"([{"trackName": "The Artist Song", "artworkUrl100": "https://c.example/a"}])", true},
        {R"([{"trackName": "x", "artistName": "ARTIST", "artworkUrl100": "https://c.example/a"}])", true},
        {R"([{"trackName": 5, "artistName": "Artist", "artworkUrl100": "https://c.example/a"}])", false},
        {R"([{"trackName": "Song"}])", false},
        {R"({"trackName": "Song", "artworkUrl100": "https://c.example/a"})", false},
        {R"([null, "Song", [[]]])", false},
        {"[", false},
    };
    for (const auto& [results, found] : cases)
        EXPECT_EQ(!coversIn(R"({"results": )" + results + "}", "Artist Song").isEmpty(), found)
            << results.toStdString();
    EXPECT_TRUE(coversIn("<html>", "x").isEmpty());
    EXPECT_TRUE(
        coversIn(R"({"results": [{"trackName": "Song", "artworkUrl100": "https://c.example/a"}]})", "!").isEmpty());
    EXPECT_FALSE(searchRequest("itunes", "x").isValid());
}

}  // namespace
