#include "music/CatalogueSearch.h"
#include "music/Music.h"
#include "support/TestFolder.h"

namespace {

const QString kSearch = "http://127.0.0.1:9/search?term=%1&entity=song&limit=3";

struct ArtworkFixture : MusicFixture {
    ArtworkFixture() { preferences.setText("glimmet.endpoints.musicSearch", "http://127.0.0.1:9"); }

    /// Whether a cover was found.
    bool lookUp(const QString& track, const QString& source = "Music", bool isBrowser = false) {
        int answers = 0;
        bool found = false;
        artwork.lookUpArtwork(track, source, isBrowser, [&](const std::optional<QImage>& image) {
            ++answers;
            found = image.has_value();
        });
        EXPECT_EQ(answers, 0) << "not before it returns";
        while (!http.waiting.isEmpty() || answers == 0) {
            loop.drain();
            http.answer();
        }
        EXPECT_EQ(answers, 1);
        return found;
    }
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
        f.players.covers["Music"] = QUrl(cover);
        EXPECT_EQ(f.lookUp(QString::number(++number)), found) << cover.toStdString();
    }
    EXPECT_EQ(f.worker.requests.first(), (QStringList{"thumbnail", "96"}));
    f.worker.answer.reset();
    f.players.covers["Music"] = QUrl("https://a.example/c");
    EXPECT_FALSE(f.lookUp("HTML"));
}

TEST(Artwork, OfABrowsersTrackIsSearched) {
    ArtworkFixture f;
    f.lookUp("Song");
    f.lookUp("Song", "another");
    EXPECT_TRUE(f.http.requests.isEmpty()) << "only for browsers";

    f.http.pages[kSearch.arg("Artist%20-%20Song")] = R"({"results": [
        {"trackName": "", "artworkUrl100": "https://c.example/1/100x100bb.jpg"},
        {"trackName": "Song", "artworkUrl100": "https://c.example/2/100x100bb.jpg"},
        {"trackName": "Song", "artworkUrl100": "https://c.example/3/100x100bb.jpg"}]})";
    f.http.pages["https://c.example/3/300x300bb.jpg"] = "jpeg";
    EXPECT_TRUE(f.lookUp("Artist - Song (Official Video)", "Arc", true));
    EXPECT_EQ(f.http.requests, (QStringList{kSearch.arg("Artist%20-%20Song"), "https://c.example/2/300x300bb.jpg",
                                            "https://c.example/3/300x300bb.jpg"}))
        << "a cover that cannot be fetched is skipped";
    f.players.covers["Arc"] = QUrl("https://a.example/gone");
    f.http.pages[kSearch.arg("A%2BB%26C")] = f.http.pages[kSearch.arg("Artist%20-%20Song")];
    EXPECT_FALSE(f.lookUp("A+B&C", "Arc", true)) << "no result is plausible";
    EXPECT_EQ(f.http.requests.mid(3), (QStringList{"https://a.example/gone", kSearch.arg("A%2BB%26C")}));
}

TEST(Artwork, IsCachedWithItsFailures) {
    ArtworkFixture f;
    f.players.covers["Music"] = QUrl("data:image/png;base64,AAEC");
    for (int i = 0; i < 61; ++i) EXPECT_TRUE(f.lookUp(QString::number(i)));
    EXPECT_TRUE(f.lookUp("0") && f.lookUp("60"));
    EXPECT_EQ(f.decoded(), 61);
    f.lookUp("61");  // empties the cache before it is stored
    f.lookUp("61");
    EXPECT_EQ(f.decoded(), 62);
    f.lookUp("60");
    EXPECT_EQ(f.decoded(), 63);

    f.players.covers["Music"] = QUrl("https://a.example/late");
    EXPECT_FALSE(f.lookUp("x"));
    f.http.pages["https://a.example/late"] = "jpeg";
    EXPECT_FALSE(f.lookUp("x")) << "a failure, too";
    EXPECT_FALSE(f.lookUp("x", "Spotify"));
    f.players.covers["Music"] = QUrl("data:image/png;base64,AAEC");
    EXPECT_TRUE(f.lookUp("x")) << "until the player tells of another cover";
}

TEST(Artwork, OfAnEarlierTrackIsDropped) {
    ArtworkFixture f;
    f.players.covers["Music"] = QUrl("https://a.example/1");
    f.http.pages["https://a.example/1"] = "jpeg";
    f.play("Music", "A");
    f.music.startMusicWatch();
    f.play("Music", "B");
    f.players.covers.clear();
    f.players.onChange();
    f.http.answer();
    f.loop.drain();
    EXPECT_FALSE(f.m.artwork->has_value());
    f.players.covers["Music"] = QUrl("https://a.example/1");
    f.players.onChange();
    f.http.answer();
    f.loop.drain();
    EXPECT_TRUE(f.m.artwork->has_value()) << "a player that tells the cover a little later";
    const auto requests = f.http.requests.size();
    f.loop.advance(8);
    EXPECT_TRUE(f.m.artwork->has_value());
    EXPECT_EQ(f.http.requests.size(), requests);
}

TEST(CatalogueSearch, FindsPlausibleCoversOnly) {
    EXPECT_EQ(normalizeForMatch(" Bl\u00fce-Sk\u0301Y 2! "), "bluesky2");
    EXPECT_EQ(searchTerm("Song (official video)"), "Song (official video)");
    const QPair<QByteArray, bool> cases[] = {
        {R"([{"trackName": "Song", "artworkUrl100": "https://c.example/a"}])", true},
        {R"([{"trackName": "The Artist Song", "artworkUrl100": "https://c.example/a"}])", true},
        {R"([{"trackName": "x", "artistName": "ARTIST", "artworkUrl100": "https://c.example/a"}])", true},
        {R"([{"trackName": "x", "artistName": "", "artworkUrl100": "https://c.example/a"}])", false},
        {R"([{"trackName": 5, "artistName": "Artist", "artworkUrl100": "https://c.example/a"}])", false},
        {R"([{"trackName": "Song"}])", false},
        {R"([{"trackName": "Song", "artworkUrl100": ""}])", false},
        {R"({"trackName": "Song", "artworkUrl100": "https://c.example/a"})", false},
        {R"([null, "Song", [[]]])", false},
        {"[", false},
    };
    for (const auto& [results, found] : cases)
        EXPECT_EQ(!coversIn(R"({"results": )" + results + "}", "Artist Song").isEmpty(), found)
            << results.toStdString();
    EXPECT_TRUE(coversIn("<html>", "x").isEmpty());
    EXPECT_FALSE(searchRequest("itunes", "x").isValid());
}

}  // namespace
