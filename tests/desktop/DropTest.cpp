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
        // The source looks for its target when the pointer moves. Its picture lies over the panel.
        ASSERT_TRUE(waitFor([&] { return !glimmet->inputRegion().isEmpty(); }));
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

// Each source keeps its promise in a way of its own, as real programs do; some are still at it when the next drops.
TEST_F(Drop, WhatIsPromisedIsHeldHoweverItComes) {
    const QString documents = home.filePath(QStringLiteral("Documents"));
    ASSERT_TRUE(QDir().mkpath(documents));
    QFile letter(documents + QStringLiteral("/letter"));
    ASSERT_TRUE(letter.open(QFile::WriteOnly));
    std::vector<std::unique_ptr<DragTool>> sources;
    const QByteArray promise = "XdndDirectSave0", link = "text/uri-list=https://example.org/";
    const struct {
        QList<QByteArray> offer;
        QByteArray lastAsked;
    } cases[] = {{{"--promise", "late", "late.png", "whole", link, "image/png=drawn anew"}, promise},
                 {{"--promise", "fails", "bytes.jpg", "", link, "application/octet-stream=original"},
                  "application/octet-stream"},
                 {{"--promise", "fails", "void.txt", "", link + "void"}, promise},
                 {{"--promise", "several", "one.txt", "first"}, promise},
                 {{"--promise", "empty", "empty.png", "", "image/png=drawn"}, "image/png"},
                 {{"--promise", "swaps", "letter", documents.toUtf8(), "UTF8_STRING=swapped"}, "UTF8_STRING"},
                 {{"--promise", "silent", "silent.txt", "", "UTF8_STRING=never"}, "UTF8_STRING"},
                 {{"--promise", "slow", "slow.txt", "piece"}, promise}};
    for (const auto& [offer, lastAsked] : cases) {
        drop(offer);
        if (HasFatalFailure()) return;
        // The next drag takes the selection over.
        const QString line = QStringLiteral("data ") + QString::fromLatin1(lastAsked);
        ASSERT_TRUE(waitFor([&] { return source->said(line); }, 15)) << offer[1].constData();
        sources.push_back(std::move(source));
    }
    const auto contents = [&](const char* name) {
        QFile file(home.filePath(QStringLiteral("data/Glimmet/Dropped/") + QLatin1String(name)));
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray("none");
    };
    EXPECT_TRUE(waitFor([&] { return stored("glimmet.shelf").contains("slow.txt"); }, 30));
    for (const char* name : {"late.png", "bytes.jpg", "one.txt", "another.txt", "folder", "Dropped%20"})
        EXPECT_TRUE(holds("glimmet.shelf", QByteArray("/Glimmet/Dropped/") + name));
    for (const char* note : {"void", "swapped", "never"}) EXPECT_TRUE(holds("glimmet.bites", note));
    EXPECT_EQ(contents("late.png"), "whole");
    EXPECT_EQ(contents("bytes.jpg"), "original");
    EXPECT_EQ(contents("slow.txt"), QByteArray("piece").repeated(22));
    EXPECT_EQ(contents("folder/inner/third.txt"), "most");
    EXPECT_TRUE(letter.exists());
    EXPECT_TRUE(sources[2]->said(QStringLiteral("drag-end copy void"))) << "and the source knows";
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

}  // namespace
