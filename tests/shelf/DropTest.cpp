#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <cmath>
#include <thread>

#include "platform/FileUrls.h"
#include "shelf/DropIntake.h"
#include "shelf/Inbox.h"
#include "shelf/NewFile.h"
#include "shelf/NoteText.h"
#include "shelf/UrlList.h"
#include "support/Creature.h"
#include "support/TestFolder.h"

using namespace Qt::StringLiterals;

namespace {

/// With an intake, and a dropped folder that is a real one.
struct DropFixture : TestFolder, CreatureFixture {
    DropFixture() : CreatureFixture(QString::fromUtf8(path())) {}

    MemoryDragPasteboard dragPasteboard;
    InlineQueue disk;
    DropIntake drops{m, shelf, clock, loop, dragPasteboard, disk};

    /// Moves a drag to a place relative to the top centre of the screen (y downwards).
    void drag(double x, double down) { drops.dragMoved({m.centerX + x, m.screenTop - down}); }
    void beginUsableDrag() {
        ++dragPasteboard.count;
        drag(600, 400);
        dragPasteboard.answer(true);
    }
    void drop(const std::vector<std::pair<const char*, QByteArray>>& forms) {
        const auto offer = std::make_shared<MemoryDrop>();
        for (const auto& [type, data] : forms) offer->offer(type, data);
        drops.handleDrop(offer);
        loop.drain();
    }
    /// Of one of the test's own files; of others nothing.
    QByteArray contents(const QUrl& file) const { return read(pathOf(file).mid(path().size())); }
};

TEST(DragWatch, AsksOncePerDragAndLooksWhetherItIsNear) {
    DropFixture f;
    for (const bool isUsable : {false, true}) {
        ++f.dragPasteboard.count;
        for (int i = 0; i < 5; ++i) f.drag(0, 10 + i);
        EXPECT_EQ(f.dragPasteboard.questions, f.dragPasteboard.count);
        EXPECT_FALSE(f.m.dragNear);
        f.dragPasteboard.answer(isUsable);
        EXPECT_EQ(f.m.dragNear, isUsable);
    }
    for (const QPointF near : {QPointF(0, 89.9), QPointF(189.9, 10), QPointF(-189, 0)}) {
        f.drag(near.x(), near.y());
        EXPECT_TRUE(f.m.dragNear) << near.x() << ' ' << near.y();
        f.drag(0, 90);
        EXPECT_FALSE(f.m.dragNear);
        f.drag(std::copysign(190, near.x()), 10);
        EXPECT_FALSE(f.m.dragNear) << near.x();
    }
}

TEST(DragWatch, ReleasingClosesTheMouthALittleLater) {
    DropFixture f;
    for (const bool next : {false, true}) {
        f.beginUsableDrag();
        f.drag(0, 10);
        f.drops.dragEnded();
        f.loop.advance(0.44);
        EXPECT_TRUE(f.m.dragNear);
        if (next) f.beginUsableDrag(), f.drag(0, 10);
        f.loop.advance(0.02);
        EXPECT_EQ(f.m.dragNear, next) << "the next drag is not shut out by the end of the one before";
    }
    f.drops.dragEnded();
    f.loop.advance(1);
    f.drag(0, 10);
    EXPECT_FALSE(f.m.dragNear) << "a window that is moved afterwards is not a drag of things";
    ++f.dragPasteboard.count;
    f.drag(0, 10);
    f.drops.dragEnded();
    f.dragPasteboard.answer(true);
    EXPECT_FALSE(f.m.dragNear) << "nor does an answer count that comes when all is over";
}

TEST(DragWatch, ADragKeepsTheCreatureAwake) {
    DropFixture f;
    f.loop.advance(100);
    f.m.asleep = true;
    f.beginUsableDrag();
    EXPECT_FALSE(f.m.asleep);
    f.loop.advance(100);
    EXPECT_LT(f.clock.uptime() - f.m.lastActivity, 22) << "though it hangs still";
    f.drops.dragEnded();
    f.loop.advance(100);
    EXPECT_GT(f.clock.uptime() - f.m.lastActivity, 99);
}

TEST(DragWatch, ANearDragBringsAHiddenCreatureBackButNotTheWeather) {
    DropFixture f;
    f.m.hidden = true;
    f.m.toy = Toy::weather;
    ++f.dragPasteboard.count;
    f.drag(0, 10);
    EXPECT_EQ(f.dragPasteboard.questions, 0);
    f.m.toy = Toy::critter;
    f.beginUsableDrag();
    EXPECT_TRUE(f.m.hidden);
    f.drag(0, 10);
    EXPECT_FALSE(f.m.hidden || f.preferences.boolean(u"glimmet.hidden"_s));
}

TEST(Drop, TheBestFormIsTaken) {
    const QByteArray image = "http://example.org/x";
    constexpr char url[] = "_NETSCAPE_URL", plain[] = "text/plain;charset=utf-8", list[] = "text/uri-list";
    const struct {
        const char* why;
        std::vector<std::pair<const char*, QByteArray>> forms;
        QByteArray held;           // in lines: files, those in the dropped folder by their extension; bites
        QByteArray contents = {};  // of the last file
    } cases[] = {
        {"files before all else, links beside them",
         {{"image/png", "png"},
          {plain, "/a b"},
          {list, "# two files\r\nfile:///a%20b\r\n" + image + "\r\nfile:///c\r\nfile:///a%20b\r\n"}},
         "/a b\n/c\nl:http://example.org/x\n"},
        {"an image before the link to it",
         {{list, image}, {"text/html", "<img>"}, {"image/tiff", ""}, {"image/jpeg", "jpeg"}},
         ".jpg\n",
         "jpeg"},
        {"an image that is its own address",
         {{url, "data:image/png;base64,AAEC/w==\ntitle"}},
         ".png\n",
         QByteArray("\0\1\2\xff", 4)},
        {"the same in its other spelling", {{url, "Data:image/svg+xml;charset=utf-8,%3Csvg/%3E"}}, ".svg\n", "<svg/>"},
        {"and in base64 for addresses", {{url, "data:image/jpeg;base64,_-8%3D"}}, ".jpg\n", "\xff\xef"},
        {"an empty one", {{url, "data:image/png;base64,"}}, ""},
        {"not an image", {{url, "data:text/html,<b>"}}, ""},
        {"text, trimmed and cut",
         {{plain, "  \n" + QByteArray("x").repeated(1000) + "\n "}},
         "n:" + QByteArray("x").repeated(400) + '\n'},
        {"text that comes late", {{plain, QByteArray(3 << 20, ' ') + "late"}}, "n:late\n"},
        {"nothing but blanks", {{plain, " \n\t\r\n"}}, ""},
        {"a colour", {{"application/x-color", "1"}}, ""},
    };
    for (const auto& c : cases) {
        DropFixture f;
        f.drop(c.forms);
        const QString made = f.shelf.droppedFolder().toLocalFile() + DropIntake::droppedFileName(f.clock.now(), {});
        QString held;
        for (const QUrl& item : f.m.items.get()) held += item.toLocalFile().remove(made.chopped(1)) + u'\n';
        for (const Bite& bite : f.m.bites.get()) held += biteKey(bite) + u'\n';
        EXPECT_EQ(held.toUtf8(), c.held) << c.why;
        EXPECT_EQ(f.contents(f.m.items->value(f.m.items->size() - 1)), c.contents) << c.why;
        EXPECT_EQ(f.m.swallowCount, c.held.isEmpty() ? 0 : 1) << c.why;
        const bool makesNew = !QDir(f.shelf.droppedFolder().toLocalFile()).isEmpty();
        f.drop(c.forms);
        EXPECT_EQ(f.m.swallowCount > 1, makesNew) << c.why << ": what is held already is not swallowed again";
    }
}

TEST(Drop, WithoutADiskNothingIsLostButTheImage) {
    for (const bool hangs : {false, true}) {
        DropFixture f;
        HeldQueue hanging;
        DropIntake drops{f.m, f.shelf, f.clock, f.loop, f.dragPasteboard, hanging};
        f.write("Glimmet", "in the place of its folder");
        auto drop = std::make_shared<MemoryDrop>();
        drop->promise = "a.txt";
        drop->saved = "x";
        if (!hangs) drop->offer("image/png", "png");
        drop->offer("text/uri-list", "https://example.org/");
        (hangs ? drops : f.drops).handleDrop(std::move(drop));
        f.loop.advance(11);
        EXPECT_EQ(f.m.bites->size(), 1);
        hanging.runAll();
        f.loop.drain();
        EXPECT_TRUE(f.m.bites->size() == 1 && f.m.items->isEmpty());
    }
}

TEST(UrlList, ReadsWhatProgramsSend) {
    const QByteArray host = QSysInfo::machineHostName().toUtf8(), name(255, 'n');
    const QByteArray longFile = "file:///" + name, longLink = "https://e.example/" + QByteArray((8 << 10) - 18, 'l');
    const struct {
        QByteArray bytes, urls;
        QString type = u"text/uri-list"_s;
    } cases[] = {
        {QByteArray(reinterpret_cast<const char*>(u"https://a.example/\nTitle"), 24 * 2), "https://a.example/",
         u"text/x-moz-url"_s},
        {"https://a.example/ä\nhttps://title/", "https://a.example/%C3%A4", u"_NETSCAPE_URL"_s},
        {"file://localhost/a\nfile://" + host + "/b\nrelative\n\n/c\nfile:d\nmailto:x@y.example",
         "file:///a file:///b mailto:x@y.example"},
        // Any bytes make a name, and equal paths make equal URLs.
        {"file:///t%FF%0A%2520%3a", "file:///t%FF%0A%2520%3A"},
        {"file:///x%3Ay", "file:///x:y"},
        {"file:///a%00b", ""},
        {"file:////server/x", "file:///server/x"},  // a folder of ours
        // What cannot be kept, or is not a place.
        {longLink + '\n' + longLink + 'x', longLink},
        {longFile + '\n' + longFile + 'x', longFile},
        {"file:///" + (name + '/').repeated(17), ""},
        {"DATA:text/html,<b>", ""},
    };
    for (const auto& [bytes, urls, type] : cases) {
        QByteArrayList list;
        const UrlList parsed = parseUrls(type, bytes);
        for (const QUrl& url : parsed.files + parsed.links) list.append(url.toEncoded());
        EXPECT_EQ(list.join(' '), urls);
    }
}

TEST(UrlList, OfAnEndlessListTheEndCounts) {
    QByteArray list;
    for (int i = 0; i < 300000; ++i) list += "file:///f/" + QByteArray::number(i) + "\r\n";
    const auto urls = parseUrls(u"text/uri-list"_s, list).files;
    EXPECT_TRUE(urls.size() >= 12 && urls.size() <= 2000) << urls.size();
    EXPECT_EQ(urls.value(urls.size() - 1), QUrl(u"file:///f/299999"_s));
}

TEST(NoteText, CountsCharactersAsAPersonDoes) {
    for (const QString& one : {u"👨‍👩‍👧‍👦"_s, u"🇫🇷"_s, u"e\u0301"_s, u"x"_s}) {
        for (const int count : {0, 1, 400, 401})
            EXPECT_EQ(firstCharacters(one.repeated(count)), one.repeated(std::min(count, 400)));
    }
    EXPECT_LT(firstCharacters(u"ab"_s + QString(5000000, QChar(0x301))).size(), 20000);
}

TEST(NewFile, CountersStandBeforeTheExtension) {
    const TestFolder dir;
    const QString dropped = DropIntake::droppedFileName({7e8}, u"jpg"_s);
    EXPECT_TRUE(QRegularExpression(u"^Dropped [\\d-]{10} at [\\d.]{8}\\.jpg$"_s).match(dropped).hasMatch());
    for (const auto& [name, second] : {std::pair(u"a.tar.gz"_s, u"a-2.tar.gz"_s),
                                       {dropped, dropped.chopped(4) + u"-2.jpg"_s},
                                       {u"plain"_s, u"plain-2"_s}}) {
        ASSERT_TRUE(writeNewFile(fileUrl(dir.path()), name, "1"));
        EXPECT_EQ(writeNewFile(fileUrl(dir.path()), name, "2")->fileName(), second);
    }
}

TEST(Inbox, WhatIsWrittenInSpurtsIsTakenWhole) {
    DropFixture f;
    const auto inbox = Inbox::make(f.shelf.droppedFolder());
    ASSERT_TRUE(inbox);
    QFile promised(inbox->place(u"a.txt"_s).toLocalFile());
    ASSERT_TRUE(promised.open(QFile::WriteOnly | QFile::Unbuffered));
    promised.write("half ");
    inbox->setReply(Inbox::Reply::written);
    std::thread source([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(700));
        promised.write("and half");
        promised.close();
    });
    EXPECT_EQ(inbox->await(5, true), Inbox::Contents::things);
    EXPECT_EQ(f.contents(inbox->moveOut({}).value(0)), "half and half");
    source.join();
}

TEST(Inbox, WhatAnEarlierRunLeftIsHeldAtTheNextStart) {
    DropFixture f;
    auto inbox = Inbox::make(f.shelf.droppedFolder());
    ASSERT_TRUE(inbox);
    const QString place = inbox->place(u"x"_s).toLocalFile().chopped(1);
    ASSERT_TRUE(QDir(place).mkpath(u"folder/inner"_s));
    ASSERT_TRUE(QFile(place + u".hidden"_s).open(QFile::WriteOnly));
    ASSERT_TRUE(QFile::link(u"/etc"_s, place + u"link"_s));
    f.drops.takeLeftovers();
    f.loop.drain();
    EXPECT_TRUE(f.m.items->isEmpty()) << "it is still in use";
    inbox.reset();
    f.drops.takeLeftovers();
    f.loop.drain();
    const QByteArray dropped = pathOf(f.shelf.droppedFolder());
    EXPECT_EQ(f.m.items.get(), (QList{fileUrl(dropped + "hidden"), fileUrl(dropped + "folder")}));
    EXPECT_TRUE(QFileInfo(place + u"link"_s).isSymLink()) << "it leads elsewhere, and stays where it is";
}

TEST(NewFile, NamesAreMadeHarmless) {
    const std::pair<QByteArray, const char*> cases[] = {{"a.txt", "a.txt"},    {"/x/../b", "b"},
                                                        {"..", "Dropped"},     {"x/", "Dropped"},
                                                        {".bashrc", "bashrc"}, {"gpj\xe2\x80\xae.exe", "gpj.exe"},
                                                        {"..\x06 ..x ", "x"},  {QByteArray("n\0u\x1bl", 5), "nul"}};
    for (const auto& [given, wanted] : cases)
        EXPECT_EQ(sanitizedFileName(given), QLatin1String(wanted)) << given.toStdString();
    for (const QByteArray extension : {".png", ".tar.gz"}) {
        const QByteArray cut = sanitizedFileName(QByteArray("é").repeated(200) + extension).toUtf8();
        EXPECT_TRUE(cut.endsWith("é" + extension) && cut.size() <= 240) << cut.toStdString();
    }
}

}  // namespace
