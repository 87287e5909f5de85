#include <QDir>
#include <QFile>

#include "desktop/DesktopTest.h"
#include "support/DragTools.h"

namespace {

/// Things dragged from another program's window onto the creature.
class Drop : public DesktopTest {
 protected:
    void SetUp() override {
        glimmet = std::make_unique<Glimmet>(session, home, QStringList{QStringLiteral("--trace")});
        ASSERT_TRUE(glimmet->started());
        ASSERT_TRUE(waitForEyes());
    }

    /// Drags from a new source onto the creature and lets go.
    void drop(const QList<QByteArray>& offer) {
        source = std::make_unique<DragTool>(session, DragTool::Kind::gtkSource, kSource, offer);
        ASSERT_TRUE(source->drag(session, kOnNotch));
        ASSERT_TRUE(waitForBody(300, 120)) << "it opens its mouth";
        // The source looks for its target when the pointer moves.
        ASSERT_TRUE(waitFor([&] { return windowAt(kOnNotch) == glimmet->panel(); }));
        session.glide(kOnNotch, kOnNotch + QPoint(0, 6), 6, 15);
        session.release(1);
    }
    bool ended() { return !source->lines().filter(QStringLiteral("drag-end")).isEmpty(); }
    /// The stored value of `key`.
    QByteArray stored(const char* key) const {
        for (const QByteArray& line : home.preferences().split('\n')) {
            if (line.startsWith(QByteArray(key) + " =")) return line;
        }
        return {};
    }
    testing::AssertionResult holds(const char* key, const QByteArray& what) {
        const auto result = waitFor([&] { return stored(key).contains(what); });
        return result ? result : testing::AssertionFailure() << "stored is: " << stored(key).toStdString();
    }
    QStringList dropped() const {
        return QDir(home.filePath(QStringLiteral("data/Glimmet/Dropped"))).entryList(QDir::Files | QDir::Hidden);
    }

    static constexpr QPoint kSource{200, 600};
    std::unique_ptr<Glimmet> glimmet;
    std::unique_ptr<DragTool> source;
};

TEST_F(Drop, TheMouthOpensAsAUsableDragComesNearAndClosesAsItGoes) {
    source =
        std::make_unique<DragTool>(session, DragTool::Kind::gtkSource, kSource, QList<QByteArray>{"UTF8_STRING=soup"});
    ASSERT_TRUE(source->drag(session, {756, 400}));
    EXPECT_TRUE(waitForBody(185, 58));
    session.glide({756, 400}, {600, 80}, 20, 10);
    EXPECT_TRUE(waitForBody(300, 120));
    session.glide({600, 80}, {500, 95}, 10, 10);
    EXPECT_TRUE(waitForBody(185, 58)) << "out of the zone";
    session.release(1);
    EXPECT_TRUE(waitFor([&] { return ended(); }));
    EXPECT_EQ(stored("glimmet.bites"), QByteArray());

    source = std::make_unique<DragTool>(session, DragTool::Kind::gtkSource, kSource,
                                        QList<QByteArray>{"application/x-color=12345678"});
    ASSERT_TRUE(source->drag(session, kOnNotch + QPoint(0, 40)));
    letPass(0.5);
    EXPECT_FALSE(waitForBody(300, 120, 0.3)) << "a colour is nothing to hold";
    session.release(1);
}

TEST_F(Drop, FilesAreHeldAndTheSourceIsToldThatTheyWereCopied) {
    drop({"text/uri-list=file:///usr/share/a%20b.txt\r\nfile:///usr/c%FF%0Ad.txt\r\n", "text/plain=no"});
    EXPECT_TRUE(holds("glimmet.shelf", "/usr/share/a%20b.txt"));
    EXPECT_TRUE(holds("glimmet.shelf", "/usr/c%FF%0Ad.txt"));
    EXPECT_TRUE(waitFor([&] { return ended(); }));
    EXPECT_FALSE(source->said(QStringLiteral("delete")));
    session.moveTo(kFar);
    EXPECT_TRUE(waitForBody(234, 74)) << "with its badge";
    EXPECT_TRUE(waitFor([&] { return glimmet->inputRegion().isEmpty(); })) << "and clicks fall through again";
}

TEST_F(Drop, ABrowsersImageBecomesAFile) {
    drop({"text/uri-list=https://example.org/cat.png", "image/png=not really a png"});
    ASSERT_TRUE(holds("glimmet.shelf", "/Glimmet/Dropped/Dropped%20"));
    const QStringList files = dropped();
    ASSERT_EQ(files.size(), 1);
    EXPECT_TRUE(files[0].endsWith(QStringLiteral(".png")));
    QFile file(home.filePath(QStringLiteral("data/Glimmet/Dropped/") + files[0]));
    ASSERT_TRUE(file.open(QFile::ReadOnly));
    EXPECT_EQ(file.readAll(), "not really a png");
    EXPECT_EQ(stored("glimmet.bites"), QByteArray());
}

TEST_F(Drop, APromisedFileIsWrittenIntoTheDroppedFolder) {
    drop({"--promise", "works", "report.txt", "quarterly", "UTF8_STRING=no"});
    EXPECT_TRUE(holds("glimmet.shelf", "/Glimmet/Dropped/report.txt"));
    EXPECT_EQ(dropped(), QStringList{QStringLiteral("report.txt")});
    EXPECT_TRUE(waitFor([&] { return source->said(QStringLiteral("drag-end copy kept")) || ended(); }));
}

TEST_F(Drop, APromiseThatIsNotKeptGivesWayToTheLink) {
    drop({"--promise", "fails", "report.txt", "x", "text/uri-list=https://example.org/report"});
    EXPECT_TRUE(holds("glimmet.bites", "example.org"));
    EXPECT_EQ(stored("glimmet.shelf"), QByteArray());
    EXPECT_TRUE(dropped().isEmpty());
    EXPECT_TRUE(waitFor([&] { return source->said(QStringLiteral("drag-end copy void")); })) << "and the source knows";
}

TEST_F(Drop, TextIsHeldAsANoteWhateverItIs) {
    drop({"UTF8_STRING=  buy milk\n"});
    EXPECT_TRUE(holds("glimmet.bites", "\"buy%20milk\""));
    drop({QByteArray("UTF8_STRING=\xff\xfe half \xc3")});
    EXPECT_TRUE(holds("glimmet.bites", "half"));
    QFile huge(home.filePath(QStringLiteral("huge")));
    ASSERT_TRUE(huge.open(QFile::WriteOnly));
    huge.write(QByteArray("wide ").repeated(2000000));
    huge.close();
    drop({"UTF8_STRING@" + huge.fileName().toUtf8()});
    EXPECT_TRUE(holds("glimmet.bites", "wide%20wide"));
    EXPECT_LT(stored("glimmet.bites").size(), 2000);
}

TEST_F(Drop, OfAThousandFilesTheNewestTwelveAreHeld) {
    QByteArray list;
    for (int i = 0; i < 1000; ++i) list += "file:///f/" + QByteArray::number(i) + "\r\n";
    drop({"text/uri-list=" + list});
    EXPECT_TRUE(holds("glimmet.shelf", "/f/999"));
    EXPECT_TRUE(holds("glimmet.shelf", "/f/988"));
    EXPECT_FALSE(stored("glimmet.shelf").contains("/f/987"));
}

TEST_F(Drop, ASourceThatHangsHoldsNothingUp) {
    drop({"--hang", "text/uri-list=file:///usr/x"});
    session.moveTo(kFar);
    // Its eyes go on following the pointer, and it closes in its own time.
    EXPECT_TRUE(waitForBody(185, 58, 4));
    session.glide(kFar, {1300, 500}, 10, 10);
    // The last move may have come too soon after the one before for the eyes to turn once more.
    EXPECT_TRUE(waitForFace([&, down = false](const Face& face) mutable {
        session.moveTo({1300, (down = !down) ? 508 : 500});
        return face.left.gaze.x() > 1;
    }));
    source.reset();
    drop({"UTF8_STRING=next"});
    EXPECT_TRUE(holds("glimmet.bites", "next")) << source->lines().join(u'\n').toStdString();
}

TEST_F(Drop, ComesBackFromHidingForADragButNotForTheWeather) {
    glimmet.reset();
    glimmet = std::make_unique<Glimmet>(session, home, QStringList{QStringLiteral("--hidden")});
    ASSERT_TRUE(glimmet->started());
    ASSERT_TRUE(waitFor([&] { return stored("glimmet.hidden").contains("true"); }));
    drop({"UTF8_STRING=wake"});
    EXPECT_TRUE(holds("glimmet.hidden", "false"));
    EXPECT_TRUE(holds("glimmet.bites", "wake"));

    glimmet = std::make_unique<Glimmet>(session, home, QStringList{QStringLiteral("--toy=weather")});
    ASSERT_TRUE(glimmet->started());
    ASSERT_TRUE(waitForBody(300, 94));
    source =
        std::make_unique<DragTool>(session, DragTool::Kind::gtkSource, kSource, QList<QByteArray>{"UTF8_STRING=rain"});
    ASSERT_TRUE(source->drag(session, kOnNotch));
    letPass(0.3);
    EXPECT_TRUE(waitForBody(300, 94)) << "the weather takes no drops";
    session.release(1);
    EXPECT_TRUE(waitFor([&] { return !source->lines().filter(QStringLiteral("drag-failed")).isEmpty(); }));
    EXPECT_FALSE(stored("glimmet.bites").contains("rain"));
}

}  // namespace
