#include "desktop/DesktopTest.h"
#include "support/DragTools.h"

namespace {

/// Things dragged from another program's window onto the creature.
class Drop : public DesktopTest {
 protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(start());
        ASSERT_TRUE(waitForEyes());
    }

    /// Drags from a new source onto the creature and lets go.
    void drop(const QList<QByteArray>& offer) {
        source = std::make_unique<DragTool>(session, DragTool::Kind::gtkSource, QPoint(200, 600), offer);
        ASSERT_TRUE(source->drag(session, kOnNotch));
        ASSERT_TRUE(waitForBody(300, 120)) << "it opens its mouth";
        // The source looks for its target when the pointer moves. Its picture lies over the panel.
        ASSERT_TRUE(waitFor([&] { return !glimmet->inputRegion().isEmpty(); }));
        session.glide(kOnNotch, kOnNotch + QPoint(0, 6), 6, 15);
        session.release(1);
    }

    std::unique_ptr<DragTool> source;
};

TEST_F(Drop, FilesAreHeldAndTheSourceIsToldThatTheyWereCopied) {
    drop({"text/uri-list=file:///usr/share/a%20b.txt\r\nfile:///usr/c%FF%0Ad.txt\r\n", "text/plain=no"});
    EXPECT_TRUE(home.holds("glimmet.shelf", "/usr/share/a%20b.txt"));
    EXPECT_TRUE(home.holds("glimmet.shelf", "/usr/c%FF%0Ad.txt"));
    EXPECT_TRUE(waitFor([&] { return source->said(QStringLiteral("drag-end copy")); }));
    EXPECT_FALSE(source->said(QStringLiteral("delete")));
    session.moveTo(kFar);
    EXPECT_TRUE(waitForBody(234, 74)) << "with its badge";
    EXPECT_TRUE(waitFor([&] { return glimmet->inputRegion().isEmpty(); })) << "and clicks fall through again";
}

// Each source keeps its promise in a way of its own, as real programs do; some are still at it when the next drops.
TEST_F(Drop, WhatIsPromisedIsHeldHoweverItComes) {
    const QByteArray letter = home.write("Documents/letter", "dear");
    std::vector<std::unique_ptr<DragTool>> sources;
    const QByteArray promise = "XdndDirectSave0", link = "text/uri-list=https://example.org/";
    const struct {
        QList<QByteArray> offer;
        QByteArray lastAsked;
    } cases[] = {{{"--promise", "late", "late.png", "whole", link, "image/png=drawn anew"}, promise},
                 {{"--promise", "fails", "bytes.jpg", "", link, "application/octet-stream=original"},
                  "application/octet-stream"},
                 {{"--promise", "fails", "void.txt", "", link + "void"}, promise},
                 {{"--promise", "after", "after.txt", "first"}, promise},
                 {{"--promise", "empty", "empty.png", "", "image/png=drawn"}, "image/png"},
                 {{"--promise", "swaps", "letter", letter.chopped(7), "UTF8_STRING=swapped"}, "UTF8_STRING"},
                 {{"--promise", "silent", "silent.txt", "", "UTF8_STRING=never"}, "UTF8_STRING"},
                 {{"--promise", "slow", "slow.txt", "piece"}, promise}};
    for (const auto& [offer, lastAsked] : cases) {
        ASSERT_NO_FATAL_FAILURE(drop(offer)) << offer[1].constData();
        // The next drag takes the selection over.
        const QString line = QStringLiteral("data ") + QString::fromLatin1(lastAsked);
        ASSERT_TRUE(waitFor([&] { return source->said(line); }, 15))
            << offer[1].constData() << ' ' << offer[2].constData() << " instead of " << lastAsked.constData() << ":\n"
            << source->lines().join(u'\n').toStdString();
        sources.push_back(std::move(source));
    }
    EXPECT_TRUE(waitFor([&] { return home.stored("glimmet.shelf").contains("slow.txt"); }, 30));
    for (const char* name : {"late.png", "bytes.jpg", "after.txt", "Dropped%20"})
        EXPECT_TRUE(home.holds("glimmet.shelf", QByteArray("/Glimmet/Dropped/") + name));
    for (const char* note : {"void", "swapped", "never"}) EXPECT_TRUE(home.holds("glimmet.bites", note));
    const auto contents = [&](const QByteArray& name) { return home.read("data/Glimmet/Dropped/" + name); };
    EXPECT_EQ(contents("late.png"), "whole");
    EXPECT_EQ(contents("bytes.jpg"), "original");
    EXPECT_EQ(contents("slow.txt"), QByteArray("piece").repeated(22));
    EXPECT_EQ(home.read("Documents/letter"), "dear");
    EXPECT_TRUE(sources[2]->said(QStringLiteral("drag-end copy void"))) << "and the source knows";
}

TEST_F(Drop, ASourceThatHangsHoldsNothingUp) {
    drop({"--hang", "text/uri-list=file:///usr/x"});
    session.moveTo(kFar);
    EXPECT_TRUE(waitForBody(185, 58, 4)) << "it closes in its own time";
    session.moveTo(kOnNotch);
    EXPECT_TRUE(waitForBody(214, 108)) << "and follows the pointer";
    source.reset();
    drop({"UTF8_STRING=next"});
    EXPECT_TRUE(home.holds("glimmet.bites", "next")) << source->lines().join(u'\n').toStdString();
}

}  // namespace
