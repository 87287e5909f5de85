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
    std::shared_ptr<MemoryDrop> drop = std::make_shared<MemoryDrop>();
    void handle() {
        drops.handleDrop(std::move(drop));
        loop.drain();
        drop = std::make_shared<MemoryDrop>();
    }
    QStringList folder() const {
        return QDir(dataFolder + QStringLiteral("Glimmet/Dropped"))
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    static QByteArray contents(const QUrl& file) {
        QFile opened(file.toLocalFile());
        return opened.open(QFile::ReadOnly) ? opened.readAll() : QByteArray("unreadable");
    }
};

TEST(DragWatch, AsksOncePerDragAndLooksWhetherItIsNear) {
    DropFixture f;
    for (const bool isUsable : {false, true}) {
        ++f.dragPasteboard.count;
        const int questions = f.dragPasteboard.questions;
        for (int i = 0; i < 5; ++i) f.drag(0, 10 + i);
        EXPECT_EQ(f.dragPasteboard.questions, questions + 1);
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
    const auto dragHere = [&] {
        f.beginUsableDrag();
        f.drag(0, 10);
    };
    dragHere();
    f.drops.dragEnded();
    f.loop.advance(0.44);
    EXPECT_TRUE(f.m.dragNear);
    f.loop.advance(0.02);
    EXPECT_FALSE(f.m.dragNear);
    // The next drag is not shut out by the end of the one before.
    dragHere();
    f.drops.dragEnded();
    dragHere();
    f.loop.advance(1);
    EXPECT_TRUE(f.m.dragNear);
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
    f.beginUsableDrag();
    EXPECT_TRUE(f.m.hidden);
    f.drag(0, 10);
    EXPECT_FALSE(f.m.hidden || f.preferences.boolean(QStringLiteral("glimmet.hidden")));

    DropFixture weather;
    weather.m.toy = Toy::weather;
    ++weather.dragPasteboard.count;
    weather.drag(0, 10);
    EXPECT_EQ(weather.dragPasteboard.questions, 0);
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
         "/a b\n/c\nl:http://example.org/x\n",
         "unreadable"},
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
        for (const auto& [type, data] : c.forms) f.drop->offer(type, data);
        f.handle();
        const QString made = f.shelf.droppedFolder().toLocalFile() + DropIntake::droppedFileName(f.clock.now(), {});
        QString held;
        for (const QUrl& item : f.m.items.get()) held += item.toLocalFile().remove(made.chopped(1)) + u'\n';
        for (const Bite& bite : f.m.bites.get()) held += biteKey(bite) + u'\n';
        EXPECT_EQ(held.toUtf8(), c.held) << c.why;
        EXPECT_EQ(f.m.items->isEmpty() ? QByteArray() : f.contents(f.m.items->last()), c.contents) << c.why;
        EXPECT_EQ(f.m.swallowCount, c.held.isEmpty() ? 0 : 1) << c.why;
        const bool makesNew = f.folder().size() > 0;
        for (const auto& [type, data] : c.forms) f.drop->offer(type, data);
        f.handle();
        EXPECT_EQ(f.m.swallowCount > 1, makesNew) << c.why << ": what is held already is not swallowed again";
    }
}

TEST(Drop, WithoutADiskNothingIsLostButTheImage) {
    for (const bool hangs : {false, true}) {
        DropFixture f;
        HeldQueue hanging;
        DropIntake drops{f.m, f.shelf, f.clock, f.loop, f.dragPasteboard, hanging};
        QFile blocked(QString::fromUtf8(f.path("Glimmet")));
        ASSERT_TRUE(blocked.open(QFile::WriteOnly));
        f.drop->promise = "a.txt";
        f.drop->saved = "x";
        if (!hangs) f.drop->offer("image/png", "png");
        f.drop->offer("text/uri-list", "https://example.org/");
        (hangs ? drops : f.drops).handleDrop(std::move(f.drop));
        f.loop.advance(11);
        EXPECT_EQ(f.m.bites->size(), 1);
        hanging.runAll();
        f.loop.drain();
        EXPECT_EQ(f.m.bites->size(), 1);
        EXPECT_TRUE(f.m.items->isEmpty());
    }
}

TEST(UrlList, ReadsWhatProgramsSend) {
    const auto parsed = [](const char* type, const QByteArray& bytes) {
        QStringList list;
        const UrlList urls = parseUrls(QString::fromLatin1(type), bytes);
        for (const QUrl& url : urls.files + urls.links) list.append(QString::fromLatin1(url.toEncoded()));
        return list.join(u' ');
    };
    const QByteArray utf16 = QByteArray(reinterpret_cast<const char*>(u"https://a.example/\nTitle"), 24 * 2);
    EXPECT_EQ(parsed("text/x-moz-url", utf16), QStringLiteral("https://a.example/"));
    EXPECT_EQ(parsed("_NETSCAPE_URL", "https://a.example/"), QStringLiteral("https://a.example/"));
    EXPECT_EQ(parsed("_NETSCAPE_URL", "https://a.example/ä\nhttps://title/"),
              QStringLiteral("https://a.example/%C3%A4"));
    const QByteArray host = QSysInfo::machineHostName().toUtf8();
    EXPECT_EQ(parsed("text/uri-list",
                     "file://localhost/a\nfile://" + host + "/b\nrelative\n\n/c\nfile:d\nmailto:x@y.example"),
              QStringLiteral("file:///a file:///b mailto:x@y.example"));
    // Any bytes make a name, and equal paths make equal URLs.
    EXPECT_EQ(parsed("text/uri-list", "file:///t%FF%0A%2520%3a"), QStringLiteral("file:///t%FF%0A%2520%3A"));
    EXPECT_EQ(parseUrls(QStringLiteral("text/uri-list"), "file:///x%3Ay").files.value(0),
              QUrl::fromLocalFile(QStringLiteral("/x:y")));
    EXPECT_EQ(parsed("text/uri-list", "file:///a%00b"), QString());
    EXPECT_EQ(parsed("text/uri-list", "file:////server/x"), QStringLiteral("file:///server/x")) << "a folder of ours";
    // What cannot be kept, or is no place.
    const QByteArray name(255, 'n');
    for (const QByteArray& longest : {"https://e.example/" + QByteArray((8 << 10) - 18, 'l'), "file:///" + name})
        EXPECT_EQ(parsed("text/uri-list", longest + '\n' + longest + 'x'), QString::fromLatin1(longest));
    EXPECT_EQ(parsed("text/uri-list", "file:///" + (name + '/').repeated(17)), QString());
    EXPECT_EQ(parsed("text/uri-list", "DATA:text/html,<b>"), QString());
}

TEST(UrlList, OfAnEndlessListTheEndCounts) {
    QByteArray list;
    for (int i = 0; i < 300000; ++i) list += "file:///f/" + QByteArray::number(i) + "\r\n";
    const auto urls = parseUrls(QStringLiteral("text/uri-list"), list).files;
    ASSERT_GE(urls.size(), 12);
    EXPECT_LE(urls.size(), 2000);
    EXPECT_EQ(urls.last(), QUrl(QStringLiteral("file:///f/299999")));
}

TEST(NoteText, CountsCharactersAsAPersonDoes) {
    const QString family = QString::fromUtf8("👨‍👩‍👧‍👦"), flag = QString::fromUtf8("🇫🇷"),
                  accented = QString::fromUtf8("e\u0301");
    for (const QString& one : {family, flag, accented, QStringLiteral("x")}) {
        EXPECT_EQ(firstCharacters(one.repeated(401)), one.repeated(400));
        EXPECT_EQ(firstCharacters(one.repeated(400)), one.repeated(400));
        EXPECT_EQ(firstCharacters(one), one);
    }
    EXPECT_LT(firstCharacters(QStringLiteral("ab") + QString(5000000, QChar(0x301))).size(), 20000);
    EXPECT_EQ(firstCharacters(QString()), QString());
}

TEST(NewFile, CountersStandBeforeTheExtension) {
    const TestFolder dir;
    const QUrl folder = fileUrl(dir.path());
    for (const auto& [name, second] : std::vector<std::pair<const char*, const char*>>{
             {"a.tar.gz", "a-2.tar.gz"}, {"v1.2 at 20.07.33.png", "v1.2 at 20.07.33-2.png"}, {"plain", "plain-2"}}) {
        ASSERT_TRUE(writeNewFile(folder, QLatin1String(name), "1"));
        EXPECT_EQ(writeNewFile(folder, QLatin1String(name), "2")->fileName(), QLatin1String(second));
    }
    const QRegularExpression dropped(QStringLiteral("^Dropped [\\d-]{10} at [\\d.]{8}\\.jpg$"));
    EXPECT_TRUE(dropped.match(DropIntake::droppedFileName({7e8}, QStringLiteral("jpg"))).hasMatch());
}

TEST(Inbox, WhatIsWrittenInSpurtsIsTakenWhole) {
    DropFixture f;
    const auto inbox = Inbox::make(f.shelf.droppedFolder());
    ASSERT_TRUE(inbox);
    QFile promised(inbox->place(QStringLiteral("a.txt")).toLocalFile());
    ASSERT_TRUE(promised.open(QFile::WriteOnly | QFile::Unbuffered));
    promised.write("half ");
    inbox->setReply(Inbox::Reply::written);
    std::thread source([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(700));
        promised.write("and half");
        promised.close();
    });
    EXPECT_EQ(inbox->await(5, true), Inbox::Contents::things);
    const auto taken = inbox->moveOut({});
    EXPECT_EQ(f.contents(taken.value(0)), "half and half");
    source.join();
}

TEST(Inbox, WhatAnEarlierRunLeftIsHeldAtTheNextStart) {
    DropFixture f;
    auto inbox = Inbox::make(f.shelf.droppedFolder());
    ASSERT_TRUE(inbox);
    const QString place = QFileInfo(inbox->place(QStringLiteral("x")).toLocalFile()).path() + u'/';
    ASSERT_TRUE(QDir(place).mkpath(QStringLiteral("folder/inner")));
    ASSERT_TRUE(QFile(place + QStringLiteral(".hidden")).open(QFile::WriteOnly));
    ASSERT_TRUE(QFile::link(QStringLiteral("/etc"), place + QStringLiteral("link")));
    f.drops.takeLeftovers();
    f.loop.drain();
    EXPECT_TRUE(f.m.items->isEmpty()) << "it is still in use";
    inbox.reset();
    f.drops.takeLeftovers();
    f.loop.drain();
    QStringList held;
    for (const QUrl& item : f.m.items.get()) held.append(item.fileName());
    EXPECT_EQ(held, (QStringList{QStringLiteral("hidden"), QStringLiteral("folder")}));
    EXPECT_EQ(f.folder().size(), 3) << "a link leads elsewhere, and stays where it is";
    EXPECT_TRUE(QFileInfo(place + QStringLiteral("link")).isSymLink());
}

TEST(NewFile, NamesAreMadeHarmless) {
    const QByteArray longName = QByteArray("é").repeated(200);
    const std::pair<QByteArray, const char*> cases[] = {{"a.txt", "a.txt"},
                                                        {"/x/../b", "b"},
                                                        {"..", "Dropped"},
                                                        {"", "Dropped"},
                                                        {"x/", "Dropped"},
                                                        {".bashrc", "bashrc"},
                                                        {"gpj\xe2\x80\xae.exe", "gpj.exe"},
                                                        {"..\x06 ..x ", "x"},
                                                        {QByteArray("n\0u\x1bl", 5), "nul"}};
    for (const auto& [given, wanted] : cases)
        EXPECT_EQ(sanitizedFileName(given), QLatin1String(wanted)) << given.toStdString();
    const QString cut = sanitizedFileName(longName + ".png");
    EXPECT_TRUE(cut.endsWith(QString::fromUtf8("é.png")));
    EXPECT_LE(cut.toUtf8().size(), 240);
    EXPECT_TRUE(sanitizedFileName(longName + ".tar.gz").endsWith(QString::fromUtf8("é.tar.gz")));
    EXPECT_FALSE(sanitizedFileName("\xff.png").isEmpty());
}

}  // namespace
