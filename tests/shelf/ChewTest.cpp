#include <gtest/gtest.h>

#include <QJsonDocument>

#include "platform/FileUrls.h"
#include "shelf/ChewedName.h"
#include "shelf/WorkerAnswer.h"
#include "support/Creature.h"
#include "support/TestFolder.h"

using namespace Qt::StringLiterals;

namespace {

const QByteArray kJpeg("\xff\xd8\xff...\xff\xd9");
const QByteArray kPng("\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR...\0\0\0\0IEND\xae\x42\x60\x82", 31);

/// With files to chew.
struct ChewFixture : CreatureFixture, TestFolder {
    QUrl file(const QByteArray& name) const {
        write(name, "");
        return fileUrl(path(name));
    }
    void runJob() {
        jobs.runAll();
        loop.advance(1.2);
    }

    Chewer chewer{worker};
};

QJsonObject failed(int code, const QString& description = {}) {
    return {{u"error"_s, QJsonObject{{u"code"_s, code}, {u"description"_s, description}}}};
}

/// Such as "chew 3"; empty where there is none.
template <class Result>
std::string errorOf(const Result& result) {
    const auto* error = std::get_if<ChewError>(&result);
    return error ? error->domain.toStdString() + ' ' + std::to_string(error->code) : std::string();
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
    EXPECT_TRUE(f.m.chewing && f.m.items->size() == 1);
    f.loop.advance(0.02);
    EXPECT_FALSE(f.m.chewing);
    EXPECT_EQ(f.m.items->value(1), fileUrl(f.path("photo -small.jpg")));
    EXPECT_TRUE(f.m.swallowCount == 1 && f.m.worryCount == 0);
    EXPECT_EQ(f.worker.requests, (QList<QStringList>{{u"chew"_s, u"smaller"_s}})) << "what came meanwhile is dropped";
}

TEST(Chew, EveryFailureOnlyWorries) {
    for (const auto& answer : {std::optional<QJsonObject>(), std::optional(failed(1))}) {
        ChewFixture f;
        f.worker.answer = answer;
        f.shelf.chew(f.file("a.png"), Chewer::Mode::toJPEG);
        f.runJob();
        f.shelf.readText(f.file("a.png"));
        f.runJob();
        EXPECT_TRUE(!f.m.chewing && f.m.worryCount == 2 && f.m.swallowCount + f.m.boopCount == 0);
        EXPECT_TRUE(f.m.items->isEmpty() && f.m.bites->isEmpty() && f.pasteboard.texts.isEmpty());
    }
}

TEST(Chew, DoesNotWaitForADeadDiskForEver) {
    ChewFixture f;
    f.shelf.chew(f.file("a.png"), Chewer::Mode::toJPEG);
    f.loop.advance(100);
    EXPECT_TRUE(!f.m.chewing && f.m.worryCount == 1);
    f.runJob();
    EXPECT_TRUE(f.worker.requests.isEmpty()) << "too late";
    f.shelf.chew(f.file("a.png"), Chewer::Mode::toJPEG);
    f.runJob();
    EXPECT_EQ(f.m.items->size(), 1);
}

TEST(Chewer, BelievesOnlyWhatItSees) {
    using enum Chewer::Mode;
    const struct {
        std::optional<QJsonObject> answer;
        QByteArray written;
        Chewer::Mode mode;
        const char* error;
    } cases[] = {
        {QJsonObject(), kPng, toPNG, ""},
        {QJsonObject(), kJpeg, toJPEG, ""},
        {QJsonObject(), "", toJPEG, "chew 3"},
        {QJsonObject(), kJpeg, toPNG, "chew 3"},
        {QJsonObject(), kPng, smaller, "chew 3"},
        {QJsonObject(), kPng.chopped(1), toPNG, "chew 3"},
        {QJsonObject(), kJpeg + '<', toJPEG, "chew 3"},
        {failed(3), kJpeg, toJPEG, "chew 3"},
        {failed(8), kJpeg, toJPEG, "worker 0"},
        {QJsonObject{{u"error"_s, u"yes"_s}}, kJpeg, toJPEG, "worker 0"},
        {failed(1, QString(999, u'x')), kJpeg, toJPEG, "worker 0"},
        {{}, kJpeg, toJPEG, "worker 0"},
    };
    for (const auto& c : cases) {
        ChewFixture f;
        f.worker.answer = c.answer;
        f.worker.written = c.written;
        const auto result = f.chewer.chew(f.file("a.gif"), c.mode, {});
        EXPECT_EQ(errorOf(result), c.error) << "row " << &c - cases;
        const QByteArrayList made{f.path(c.mode == toPNG ? "a.png" : "a.jpg")};
        EXPECT_EQ(f.worker.taken, *c.error ? QByteArrayList() : made) << "row " << &c - cases;
    }

    const QString page(5000, u'x');
    ChewFixture f;
    for (const QString& good : {u"a\n\tb \u00fc \U0001f600"_s, page}) {
        f.worker.answer = {{u"text"_s, good}};
        EXPECT_EQ(std::get<QString>(f.chewer.readText(f.file("a.png"))), good);
    }
    for (const QString& bad : {QString(), u"\u001b[2J"_s, QString(u'\0'), QString(QChar(0xd800)), page.repeated(100)}) {
        f.worker.answer = {{u"text"_s, bad}};
        EXPECT_EQ(errorOf(f.chewer.readText(f.file("a.png"))), "worker 0");
    }
}

TEST(Chewer, OpensRegularFilesOnly) {
    ChewFixture f;
    ASSERT_EQ(::mkfifo(f.path("pipe.png").constData(), 0666), 0);
    ASSERT_EQ(::symlink("loop.png", f.path("loop.png").constData()), 0);
    ASSERT_EQ(::symlink("page.png", f.path("link.png").constData()), 0);
    EXPECT_EQ(errorOf(f.chewer.readText(fileUrl(f.path("missing.PDF")))), "chew 4");
    for (const QByteArray& path :
         {f.path("missing.png"), f.path(""), f.path("pipe.png"), f.path("loop.png"), QByteArray("/dev/zero")})
        EXPECT_EQ(errorOf(f.chewer.readText(fileUrl(path))), "chew 1") << path.toStdString();
    EXPECT_EQ(errorOf(f.chewer.chew(QUrl(u"https://a.example/a.png"_s), {}, {})), "chew 1");
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
    EXPECT_EQ(errorOf(f.chewer.chew(f.file("d.png"), {}, fileUrl(f.path("dropped")))), "chew 2");
    f.worker.answer = failed(1);
    EXPECT_EQ(errorOf(f.chewer.chew(f.file("d.png"), {}, fileUrl(f.path("dropped")))), "chew 1");
}

TEST(ChewedName, IsMadeOfAnyName) {
    using enum Chewer::Mode;
    constexpr qsizetype kLongest = 255;
    const auto letters = [](int count) { return QByteArray(count, 'x'); };
    const QByteArray umlauts = QByteArray("\u00fc").repeated(126);
    const struct {
        QByteArray source, result;
        Chewer::Mode mode = toJPEG;
    } cases[] = {
        {"a.tar.gif", "a.tar.png", toPNG},
        {".png", ".png.jpg"},
        {"none", "none.jpg"},
        {"end.", "end..jpg"},
        {"a\nb \"%20\xff\xfe.png", "a\nb \"%20\xff\xfe.jpg"},
        {letters(250) + ".heic", letters(250) + ".jpg"},
        {letters(251) + ".png", letters(245) + "-small.jpg", smaller},
        // 126 two-byte letters; 251 bytes would end in the middle of the last.
        {umlauts + ".b", umlauts.left(250) + ".jpg"},
        {QByteArray(255, '\x80'), QByteArray(248, '\x80') + ".jpg"},
    };
    for (const auto& [source, result, mode] : cases) EXPECT_EQ(ChewedName(source, mode).plain(kLongest), result);
    EXPECT_EQ(ChewedName(letters(250), toPNG).numbered(10, kLongest).size(), kLongest);
}

TEST(ReadText, GoesWholeToTheClipboardAndItsBeginningToTheShelf) {
    ChewFixture f;
    const QString page(1000, u'x');
    f.worker.answer = {{u"text"_s, page}};
    for (int i = 1; i <= 2; ++i) {
        f.m.asleep = true;
        f.shelf.readText(f.file("page.pdf"));
        f.runJob();
        EXPECT_EQ(f.pasteboard.texts, QStringList(i, page)) << "also when the note is held already";
        EXPECT_TRUE(f.m.boopCount == i && !f.m.asleep);
    }
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
    EXPECT_TRUE(f.worker.requests.size() == 1 && f.preferences.writes == 0);
}

}  // namespace
