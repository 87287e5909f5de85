#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QTemporaryDir>

#include "platform/FileUrls.h"
#include "shelf/ChewedName.h"
#include "shelf/ChipActions.h"
#include "shelf/WorkerAnswer.h"
#include "support/Creature.h"

using namespace Qt::StringLiterals;

namespace {

const QByteArray kJpeg("\xff\xd8\xff...\xff\xd9");
const QByteArray kPng("\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR...\0\0\0\0IEND\xae\x42\x60\x82", 31);

/// With files to chew.
struct ChewFixture : CreatureFixture {
    QUrl file(const QByteArray& name) const {
        QFile made(QFile::decodeName(path(name)));
        EXPECT_TRUE(made.open(QIODevice::WriteOnly));
        return fileUrl(path(name));
    }
    QByteArray path(const QByteArray& name) const { return QFile::encodeName(folder.path()) + '/' + name; }
    void runJob() {
        jobs.runAll();
        loop.advance(1.2);
    }

    QTemporaryDir folder;
    Chewer chewer{worker};
};

QUrl file(const char* path) {
    return QUrl::fromLocalFile(QString::fromUtf8(path));
}

QJsonObject failed(int code, const QString& description = {}) {
    return {{QStringLiteral("error"),
             QJsonObject{{QStringLiteral("code"), code}, {QStringLiteral("description"), description}}}};
}

QJsonObject text(const QString& said) {
    return {{QStringLiteral("text"), said}};
}

TEST(Chew, HoldsTheResultAfterAMomentOfChewing) {
    ChewFixture f;
    const QUrl photo = f.file("photo .jpg");
    f.m.items = QList{photo};
    f.shelf.chew(photo, Chewer::Mode::smaller);
    EXPECT_TRUE(f.m.chewing);
    f.shelf.chew(photo, Chewer::Mode::toPNG);
    f.shelf.readText(photo);
    f.jobs.runAll();
    f.loop.advance(1.09);
    EXPECT_TRUE(f.m.chewing);
    EXPECT_EQ(f.m.items->size(), 1);
    f.loop.advance(0.02);
    EXPECT_FALSE(f.m.chewing);
    EXPECT_EQ(f.m.items->value(1), fileUrl(f.path("photo -small.jpg")));
    EXPECT_EQ(f.m.swallowCount, 1);
    EXPECT_EQ(f.m.worryCount, 0);
    EXPECT_EQ(f.worker.requests, (QList<QStringList>{{QStringLiteral("chew"), QStringLiteral("smaller")}}))
        << "what came meanwhile is dropped";
}

TEST(Chew, EveryFailureOnlyWorries) {
    for (const auto& answer : {std::optional<QJsonObject>(), std::optional(failed(1))}) {
        ChewFixture f;
        f.worker.answer = answer;
        f.shelf.chew(f.file("a.png"), Chewer::Mode::toJPEG);
        f.runJob();
        f.shelf.readText(f.file("a.png"));
        f.runJob();
        EXPECT_FALSE(f.m.chewing);
        EXPECT_EQ(f.m.worryCount, 2);
        EXPECT_TRUE(f.m.items->isEmpty() && f.m.bites->isEmpty() && f.pasteboard.texts.isEmpty());
        EXPECT_EQ(f.m.swallowCount + f.m.boopCount, 0);
    }
}

TEST(Chew, DoesNotWaitForADeadDiskForEver) {
    ChewFixture f;
    f.shelf.chew(f.file("a.png"), Chewer::Mode::toJPEG);
    f.loop.advance(100);
    EXPECT_FALSE(f.m.chewing);
    EXPECT_EQ(f.m.worryCount, 1);
    f.runJob();
    EXPECT_TRUE(f.worker.requests.isEmpty()) << "too late";
    f.shelf.chew(f.file("a.png"), Chewer::Mode::toJPEG);
    f.runJob();
    EXPECT_EQ(f.m.items->size(), 1);
}

TEST(Chewer, BelievesOnlyWhatItSees) {
    const auto answered = [](const char* json) { return QJsonDocument::fromJson(json).object(); };
    const struct {
        std::optional<QJsonObject> answer;
        QByteArray written;
        Chewer::Mode mode;
        QString domain;
        int code;
    } cases[] = {
        {QJsonObject(), kPng, Chewer::Mode::toPNG, {}, 0},
        {QJsonObject(), kJpeg, Chewer::Mode::toJPEG, {}, 0},
        {answered(R"({"file": "https://a.example/?secret"})"), kJpeg, Chewer::Mode::toJPEG, {}, 0},
        {answered(R"({"file": "file:///etc/passwd"})"), "", Chewer::Mode::toJPEG, u"chew"_s, 3},
        {QJsonObject(), kJpeg, Chewer::Mode::toPNG, u"chew"_s, 3},
        {QJsonObject(), kPng, Chewer::Mode::smaller, u"chew"_s, 3},
        {QJsonObject(), kPng.chopped(1), Chewer::Mode::toPNG, u"chew"_s, 3},
        {QJsonObject(), kJpeg + '<', Chewer::Mode::toJPEG, u"chew"_s, 3},
        {QJsonObject(), "#!/bin/sh", Chewer::Mode::toJPEG, u"chew"_s, 3},
        {failed(3), kJpeg, Chewer::Mode::toJPEG, u"chew"_s, 3},
        {failed(8), kJpeg, Chewer::Mode::toJPEG, u"worker"_s, 0},
        {answered(R"({"error": "yes"})"), kJpeg, Chewer::Mode::toJPEG, u"worker"_s, 0},
        {failed(1, QString(999, u'x')), kJpeg, Chewer::Mode::toJPEG, u"worker"_s, 0},
        {{}, kJpeg, Chewer::Mode::toJPEG, u"worker"_s, 0},
    };
    for (const auto& [answer, written, mode, domain, code] : cases) {
        ChewFixture f;
        f.worker.answer = answer;
        f.worker.written = written;
        const auto result = f.chewer.chew(f.file("a.gif"), mode, {});
        const auto* error = std::get_if<ChewError>(&result);
        EXPECT_EQ(error ? error->domain : QString(), domain) << written.toStdString();
        EXPECT_EQ(error ? error->code : 0, code) << written.toStdString();
        const QByteArrayList made{f.path(mode == Chewer::Mode::toPNG ? "a.png" : "a.jpg")};
        EXPECT_EQ(f.worker.taken, error ? QByteArrayList() : made);
    }

    const QString page(5000, u'x');
    ChewFixture f;
    for (const QString& good : {u"a\n\tb \u00fc \U0001f600"_s, page}) {
        f.worker.answer = text(good);
        EXPECT_EQ(std::get<QString>(f.chewer.readText(f.file("a.png"))), good);
    }
    for (const QString& bad : {QString(), u"\u001b[2J"_s, QString(u'\0'), QString(QChar(0xd800)), page.repeated(100)}) {
        f.worker.answer = text(bad);
        EXPECT_EQ(std::get<ChewError>(f.chewer.readText(f.file("a.png"))).domain, u"worker"_s);
    }
}

TEST(Chewer, BelievesOnlyThumbnailsThatFit) {
    const QByteArray pixels("\xff\0\0\x80\0\xff\0\xff", 8);  // a red that is half there, a green
    const QString base64 = QString::fromLatin1(pixels.toBase64()),
                  four = QString::fromLatin1(QByteArray(16, 'x').toBase64());
    const struct {
        QJsonValue width, height, pixels;
        bool isBelieved = false;
    } cases[] = {
        {2, 1, base64, true},
        {1, 2, base64, true},
        {2, 2, base64},
        {1, 1, base64},
        {3, 1, base64},
        {4, 1, four},
        {1, 4, four},
        {0, 0, u""_s},
        {-2, -1, base64},
        {1.5, 2, base64},
        {1 << 16, 1 << 16, u""_s},
        {u"2"_s, 1, base64},
        {{}, 1, base64},
        {2, 1, {}},
        {2, 1, base64.chopped(2)},
        {2, 1, u"!"_s + base64},
        {2, 1, base64 + QChar(0x100)},
    };
    const auto answered = [](const auto& c) {
        return QJsonObject{{u"width"_s, c.width}, {u"height"_s, c.height}, {u"pixels"_s, c.pixels}};
    };
    for (const auto& c : cases) {
        const auto made = thumbnailIn(answered(c), 2);
        const auto* image = std::get_if<QImage>(&made);
        EXPECT_EQ(bool(image), c.isBelieved) << QJsonDocument(answered(c)).toJson().toStdString();
        if (image) {
            EXPECT_EQ(image->pixelColor(0, 0), QColor(255, 0, 0, 128));
        } else {
            EXPECT_EQ(std::get<ChewError>(made).domain, u"worker"_s);
        }
    }
    EXPECT_EQ(std::get<ChewError>(thumbnailIn(failed(1), 2)).code, 1);
    EXPECT_EQ(std::get<ChewError>(thumbnailIn({}, 2)).domain, u"worker"_s);
}

TEST(Chewer, OpensRegularFilesOnly) {
    ChewFixture f;
    ASSERT_EQ(::mkfifo(f.path("pipe.png").constData(), 0666), 0);
    ASSERT_EQ(::symlink("loop.png", f.path("loop.png").constData()), 0);
    ASSERT_EQ(::symlink("page.png", f.path("link.png").constData()), 0);
    for (const auto& [path, code] : {std::pair(f.path("missing.png"), 1),
                                     {f.path("missing.PDF"), 4},
                                     {f.path(""), 1},
                                     {f.path("pipe.png"), 1},
                                     {f.path("loop.png"), 1},
                                     {"/dev/zero", 1}})
        EXPECT_EQ(std::get<ChewError>(f.chewer.readText(fileUrl(path))).code, code) << path.toStdString();
    EXPECT_EQ(std::get<ChewError>(f.chewer.chew(QUrl(u"https://a.example/a.png"_s), {}, {})).code, 1);
    EXPECT_TRUE(f.worker.requests.isEmpty());
    for (const char* name : {"page.Pdf", "page.png"}) f.chewer.readText(f.file(name));
    f.chewer.readText(fileUrl(f.path("link.png")));
    const QStringList image{u"read"_s, u"image"_s};
    EXPECT_EQ(f.worker.requests, (QList<QStringList>{{u"read"_s, u"pdf"_s}, image, image}));
}

TEST(Chewer, NeverTakesANameThatIsTaken) {
    ChewFixture f;
    const auto chewed = [&](const char* name, Chewer::Mode mode = Chewer::Mode::toJPEG) {
        const auto result = f.chewer.chew(f.file(name), mode, fileUrl(f.path("dropped/")));
        return pathOf(std::get<QUrl>(result));
    };
    f.worker.taken.append(f.path("a.jpg"));
    for (int number = 10; number < 99; ++number)
        f.worker.taken.append(f.path("a-" + QByteArray::number(number) + ".jpg"));
    EXPECT_EQ(chewed("a.png"), f.path("a-99.jpg"));
    EXPECT_EQ(chewed("a.png"), f.path("a-100.jpg"));
    EXPECT_EQ(chewed("a.png", Chewer::Mode::smaller), f.path("a-small.jpg"));

    f.worker.readOnly.append(f.path("").chopped(1));
    EXPECT_EQ(chewed("b.png"), f.path("dropped/b.jpg"));
    f.file("c.jpg");
    EXPECT_TRUE(chewed("c.png").startsWith(f.path("dropped/c-")))
        << "the number that it would have had beside its source";
    f.worker.readOnly.append(f.path("dropped"));
    EXPECT_EQ(std::get<ChewError>(f.chewer.chew(f.file("d.png"), {}, fileUrl(f.path("dropped")))).code, 2);
    f.worker.answer = failed(1);
    EXPECT_EQ(std::get<ChewError>(f.chewer.chew(f.file("d.png"), {}, fileUrl(f.path("dropped")))).code, 1);
}

TEST(ChewedName, IsMadeOfAnyName) {
    constexpr qsizetype kLongest = 255;
    const QByteArray umlauts = QByteArray("\u00fc").repeated(126);
    const struct {
        QByteArray source, result;
        Chewer::Mode mode = Chewer::Mode::toJPEG;
    } cases[] = {
        {"a.tar.gif", "a.tar.png", Chewer::Mode::toPNG},
        {".png", ".png.jpg"},
        {"none", "none.jpg"},
        {"end.", "end..jpg"},
        {"a\nb \"%20\xff\xfe.png", "a\nb \"%20\xff\xfe.jpg"},
        {QByteArray(250, 'x') + ".heic", QByteArray(250, 'x') + ".jpg"},
        {QByteArray(252, 'x') + ".b", QByteArray(251, 'x') + ".jpg"},
        {QByteArray(251, 'x') + ".png", QByteArray(245, 'x') + "-small.jpg", Chewer::Mode::smaller},
        // 126 two-byte letters; 251 bytes would end in the middle of the last.
        {umlauts + ".b", umlauts.left(250) + ".jpg"},
        {QByteArray(255, '\x80'), QByteArray(248, '\x80') + ".jpg"},
    };
    for (const auto& [source, result, mode] : cases) EXPECT_EQ(ChewedName(source, mode).plain(kLongest), result);
    EXPECT_EQ(ChewedName(QByteArray(250, 'x'), Chewer::Mode::toPNG).numbered(10, kLongest).size(), kLongest);
}

TEST(ReadText, GoesWholeToTheClipboardAndItsBeginningToTheShelf) {
    ChewFixture f;
    const QString page(1000, u'x');
    f.worker.answer = text(page);
    for (int i = 1; i <= 2; ++i) {
        f.m.asleep = true;
        f.shelf.readText(f.file("page.pdf"));
        f.runJob();
        EXPECT_EQ(f.pasteboard.texts.size(), i) << "also when the note is held already";
        EXPECT_EQ(f.m.boopCount, i);
        EXPECT_FALSE(f.m.asleep);
    }
    EXPECT_EQ(f.pasteboard.texts.last(), page);
    EXPECT_EQ(f.m.bites.get(), QList{Bite::note(page.left(400))});
}

TEST(Chew, AShelfThatIsGoneIsNotTouched) {
    ChewFixture f;
    {
        NotchModel gone;
        Shelf(gone, f.shelfPorts()).chew(f.file("a.png"), Chewer::Mode::toJPEG);
        f.jobs.runAll();
    }
    f.loop.advance(100);
    EXPECT_EQ(f.worker.requests.size(), 1);
}

struct ActionsFixture : ChewFixture {
    MemoryWorkspace workspace;
    MemorySharing sharing;
    ChipActions actions{m, shelf, workspace, sharing};
    QList<MenuItem> shared;

    ActionsFixture() {
        actions.showSharing = [this](const QList<MenuItem>& items) { shared = items; };
    }
    static QString titles(const QList<MenuItem>& menu) {
        QStringList list;
        for (const MenuItem& item : menu) {
            list.append(item.isSeparator() ? QStringLiteral("-") : item.title);
            if (!item.submenu.isEmpty()) list.last() += u'(' + titles(item.submenu) + u')';
        }
        return list.join(u'|');
    }
    static void choose(const QList<MenuItem>& menu, const char* title) {
        for (const MenuItem& item : menu) {
            if (item.title == QString::fromUtf8(title) && item.action) return item.action();
            choose(item.submenu, title);
        }
    }
};

TEST(ChipMenu, ListsWhatTheThingAllows) {
    ActionsFixture f;
    const QString chew = QStringLiteral("-|Chew(Into a JPEG|Into a PNG|Smaller)|");
    const QString head = QStringLiteral("Open|Reveal in Finder|Share…|"), read = QStringLiteral("Read the text|");
    const QString tail = QStringLiteral("-|Remove");
    for (const char* name :
         {"a.png", "a.JPG", "a.jpeg", "a.heic", "a.HEIF", "a.tiff", "a.tif", "a.webp", "a.gif", "x.y.bmp"})
        EXPECT_EQ(f.titles(f.actions.menu(QUrl::fromLocalFile(QStringLiteral("/") + QLatin1String(name)))),
                  head + chew + read + tail)
            << name;
    EXPECT_EQ(f.titles(f.actions.menu(file("/a.pdf"))), head + read + tail);
    for (const char* name : {"/notes.txt", "/png", "/a.png.txt"})
        EXPECT_EQ(f.titles(f.actions.menu(file(name))), head + tail);
    EXPECT_EQ(f.titles(f.actions.menu(Bite::note(QStringLiteral("x")))), QStringLiteral("Copy|-|Remove"));
    EXPECT_EQ(f.titles(f.actions.menu(Bite::link(QUrl(QStringLiteral("https://a.example"))))),
              QStringLiteral("Open|Share…|-|Remove"));
    EXPECT_EQ(f.titles(f.actions.menu(HeldTimer{})), QStringLiteral("Remove"));
}

TEST(ChipMenu, DoesWhatItSays) {
    ActionsFixture f;
    const QUrl image = f.file("a.png");
    const Bite link = Bite::link(QUrl(QStringLiteral("https://a.example"))), note = Bite::note(QStringLiteral("soup"));
    f.m.items = QList{image, file("/p/b.txt")};
    f.m.bites = QList{link, note};
    f.shelf.addTimer(5);
    const auto menu = f.actions.menu(image);
    f.choose(menu, "Open");
    f.choose(menu, "Reveal in Finder");
    f.choose(f.actions.menu(link), "Open");
    EXPECT_EQ(f.workspace.opened, (QList{image, *link.url()}));
    EXPECT_EQ(f.workspace.revealed, QList{image});
    f.choose(f.actions.menu(note), "Copy");
    EXPECT_EQ(f.pasteboard.texts, QStringList{QStringLiteral("soup")});
    EXPECT_EQ(f.m.boopCount, 1);
    f.choose(menu, "Into a PNG");
    f.jobs.runAll();
    EXPECT_EQ(f.worker.requests.value(0).value(1), QStringLiteral("png"));

    f.sharing.list = {{QStringLiteral("Send by mail…"), {}, {}}};
    f.choose(menu, "Share…");
    EXPECT_EQ(f.titles(f.shared), QStringLiteral("Send by mail…"));

    f.choose(menu, "Remove");
    f.choose(f.actions.menu(note), "Remove");
    f.choose(f.actions.menu(f.m.timers->first()), "Remove");
    EXPECT_EQ(f.m.items.get(), QList{file("/p/b.txt")});
    EXPECT_EQ(f.m.bites.get(), QList{link});
    EXPECT_TRUE(f.m.timers->isEmpty());
}

}  // namespace
