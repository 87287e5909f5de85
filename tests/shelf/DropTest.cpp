#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "platform/FileUrls.h"
#include "shelf/DropIntake.h"
#include "shelf/Inbox.h"
#include "shelf/NewFile.h"
#include "shelf/NoteText.h"
#include "shelf/UrlList.h"
#include "support/Creature.h"

namespace {

/// With an intake, and a dropped folder that is a real one.
struct DropFixture : CreatureFixture {
    DropFixture() : CreatureFixture(newFolder()) {}
    ~DropFixture() { QDir(dataFolder).removeRecursively(); }
    static QString newFolder() {
        QTemporaryDir made;
        made.setAutoRemove(false);
        return made.path();
    }

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
        return QDir(dataFolder + QStringLiteral("/Glimmet/Dropped"))
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    static QByteArray contents(const QUrl& file) {
        QFile opened(file.toLocalFile());
        return opened.open(QFile::ReadOnly) ? opened.readAll() : QByteArray("unreadable");
    }
};

TEST(DragWatch, TheZoneIsOpenAtItsEdges) {
    DropFixture f;
    f.beginUsableDrag();
    for (const auto& [x, down, isNear] : std::initializer_list<std::tuple<double, double, bool>>{{0, 89.9, true},
                                                                                                 {0, 90, false},
                                                                                                 {189.9, 10, true},
                                                                                                 {190, 10, false},
                                                                                                 {-190, 10, false},
                                                                                                 {-189, 0, true}}) {
        f.drag(x, down);
        EXPECT_EQ(f.m.dragNear, isNear) << x << ' ' << down;
    }
}

TEST(DragWatch, AsksOncePerDragAndNoticesALateAnswer) {
    DropFixture f;
    for (const bool isUsable : {true, false}) {
        ++f.dragPasteboard.count;
        const int questions = f.dragPasteboard.questions;
        for (int i = 0; i < 5; ++i) f.drag(0, 10 + i);
        EXPECT_EQ(f.dragPasteboard.questions, questions + 1);
        EXPECT_FALSE(f.m.dragNear);
        f.dragPasteboard.answer(isUsable);
        EXPECT_EQ(f.m.dragNear, isUsable);
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
    const struct {
        const char* why;
        std::vector<std::pair<const char*, QByteArray>> forms;
        QStringList files;  // held ones; those in the dropped folder by their extension
        QStringList bites;
        QByteArray contents;  // of the last file
    } cases[] = {
        {"files before all else, links beside them",
         {{"image/png", "png"},
          {"text/plain;charset=utf-8", "/a b"},
          {"text/uri-list", "# two files\r\nfile:///a%20b\r\n" + image + "\r\nfile:///c\r\nfile:///a%20b\r\n"}},
         {QStringLiteral("/a b"), QStringLiteral("/c")},
         {QStringLiteral("l:http://example.org/x")},
         "unreadable"},
        {"an image before the link to it",
         {{"text/uri-list", image}, {"text/html", "<img>"}, {"image/tiff", ""}, {"image/jpeg", "jpeg"}},
         {QStringLiteral(".jpg")},
         {},
         "jpeg"},
        {"an image that is its own address",
         {{"_NETSCAPE_URL", "data:image/png;base64,AAEC/w==\ntitle"}},
         {QStringLiteral(".png")},
         {},
         QByteArray("\0\1\2\xff", 4)},
        {"the same in its other spelling",
         {{"_NETSCAPE_URL", "Data:image/svg+xml;charset=utf-8,%3Csvg/%3E"}},
         {QStringLiteral(".svg")},
         {},
         "<svg/>"},
        {"and in base64 for addresses",
         {{"_NETSCAPE_URL", "data:image/jpeg;base64,_-8%3D"}},
         {QStringLiteral(".jpg")},
         {},
         "\xff\xef"},
        {"an empty one", {{"_NETSCAPE_URL", "data:image/png;base64,"}}, {}, {}, {}},
        {"not an image", {{"_NETSCAPE_URL", "data:text/html,<b>"}}, {}, {}, {}},
        {"text, trimmed and cut",
         {{"text/plain;charset=utf-8", "  \n" + QByteArray("x").repeated(1000) + "\n "}},
         {},
         {QStringLiteral("n:") + QString(400, u'x')},
         {}},
        {"text that comes late",
         {{"text/plain;charset=utf-8", QByteArray(3 << 20, ' ') + "late"}},
         {},
         {QStringLiteral("n:late")},
         {}},
        {"nothing but blanks", {{"text/plain;charset=utf-8", " \n\t\r\n"}}, {}, {}, {}},
        {"a colour", {{"application/x-color", "1"}}, {}, {}, {}},
    };
    for (const auto& c : cases) {
        DropFixture f;
        for (const auto& [type, data] : c.forms) f.drop->offer(type, data);
        f.handle();
        ASSERT_EQ(f.m.items->size(), c.files.size()) << c.why;
        for (qsizetype i = 0; i < c.files.size(); ++i)
            EXPECT_TRUE(f.m.items->at(i).toLocalFile().endsWith(c.files[i])) << c.why;
        QStringList bites;
        for (const Bite& bite : f.m.bites.get()) bites.append(biteKey(bite));
        EXPECT_EQ(bites, c.bites) << c.why;
        EXPECT_EQ(c.files.isEmpty() ? QByteArray() : f.contents(f.m.items->last()), c.contents) << c.why;
        EXPECT_EQ(f.m.swallowCount, c.files.isEmpty() && c.bites.isEmpty() ? 0 : 1) << c.why;
        for (const auto& [type, data] : c.forms) f.drop->offer(type, data);
        const bool makesNew = f.folder().size() > 0;
        f.handle();
        EXPECT_EQ(f.m.swallowCount > 1, makesNew) << c.why << ": what is held already is not swallowed again";
    }
}

TEST(Drop, FilesOfOneSecondGetCounters) {
    DropFixture f;
    for (const char* bytes : {"first", "second"}) {
        f.drop->offer("image/jpeg", bytes);
        f.handle();
    }
    ASSERT_EQ(f.m.items->size(), 2);
    const QString name = f.m.items->first().fileName();
    EXPECT_EQ(name, DropIntake::droppedFileName(f.clock.now(), QStringLiteral("jpg")));
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^Dropped [\\d-]{10} at [\\d.]{8}\\.jpg$")).match(name).hasMatch());
    EXPECT_EQ(f.contents(f.m.items->first()), "first");
    EXPECT_EQ(f.m.items->last().fileName(), QString(name).replace(QStringLiteral(".jpg"), QStringLiteral("-2.jpg")));
    EXPECT_EQ(f.folder().size(), 2) << "drafts are not left behind";
}

TEST(Drop, APromisedFileIsTakenWholeUnderAHarmlessName) {
    DropFixture f;
    for (const char* name : {"passwd.txt", "passwd-2.txt"}) {
        f.drop->promise = "../../etc/pass\nwd.txt";
        f.drop->saved = name;
        f.drop->offer("text/plain;charset=utf-8", "no");
        f.handle();
        const QUrl wanted = fileUrl((f.dataFolder + QStringLiteral("/Glimmet/Dropped/")).toUtf8() + name);
        EXPECT_EQ(f.m.items->value(f.m.items->size() - 1), wanted);
        EXPECT_EQ(f.contents(wanted), name);
    }
    EXPECT_EQ(f.folder().size(), 2);
}

TEST(Drop, WithoutADiskNothingIsLostButTheImage) {
    for (const bool hangs : {false, true}) {
        DropFixture f;
        HeldQueue hanging;
        DropIntake drops{f.m, f.shelf, f.clock, f.loop, f.dragPasteboard, hanging};
        QFile blocked(f.dataFolder + QStringLiteral("/Glimmet"));
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
    const QTemporaryDir dir;
    const QUrl folder = QUrl::fromLocalFile(dir.path() + u'/');
    for (const auto& [name, second] : std::vector<std::pair<const char*, const char*>>{
             {"a.tar.gz", "a-2.tar.gz"}, {"v1.2 at 20.07.33.png", "v1.2 at 20.07.33-2.png"}, {"plain", "plain-2"}}) {
        ASSERT_TRUE(writeNewFile(folder, QLatin1String(name), "1"));
        EXPECT_EQ(writeNewFile(folder, QLatin1String(name), "2")->fileName(), QLatin1String(second));
    }
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
    const std::vector<std::pair<QByteArray, const char*>> cases{{"a.txt", "a.txt"},
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
