#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QPainter>
#include <QPdfWriter>
#include <QRandomGenerator>

#include "platform/Descriptor.h"
#include "reading/Screenshots.h"
#include "support/TestFolder.h"
#include "worker/Languages.h"
#include "worker/ReadText.h"

using namespace Qt::StringLiterals;

namespace {

constexpr const char* kNothing = "7 no text found";

/// A folder of its own, and what reading makes of a file in it.
struct Reading : testing::Test, TestFolder {
    QString place(const char* name) const { return QString::fromUtf8(path(name)); }
    /// The text, or the failure's code and description.
    std::string reading(const char* name) const {
        const Document kind = QByteArrayView(name).endsWith(".pdf") ? Document::pdf : Document::image;
        const Result<QString> result = readText(openRegularFile(path(name)).get(), kind);
        const auto* why = std::get_if<Failure>(&result);
        return why ? std::to_string(why->code) + ' ' + why->description.toStdString()
                   : std::get<QString>(result).toStdString();
    }
    std::string reading(const QImage& picture) const {
        EXPECT_TRUE(picture.save(place("picture.png")));
        return reading("picture.png");
    }
};
using ImageReading = Reading;
using PdfReading = Reading;

QFont sans(int pixels) {
    return face(u"DejaVu Sans"_s, pixels);
}

TEST_F(ImageReading, ReadsScreenshots) {
    std::vector<Screenshot> shots = oddScreenshots();
    for (const Screenshot& shot : {page(u"Liberation Serif"_s, 13, false), columns(u"Liberation Serif"_s, 15, true),
                                   window(u"Liberation Sans"_s, 15), headline(u"Liberation Sans"_s, 12, kLightOnDark)})
        shots.push_back(shot);
    for (const Screenshot& shot : shots)
        EXPECT_EQ(reading(shot.picture), shot.text.toStdString()) << shot.name.toStdString();
    const auto few = [](QPainter& painter) {
        painter.drawText(700, 3000, u"Apples and pears"_s);
        painter.drawText(700, 3100, u"Wild cherries"_s);
    };
    EXPECT_EQ(reading(drawn({6000, 4500}, kDarkOnLight, sans(40), few)), "Apples and pears\nWild cherries");
    // Light or dark on nothing.
    for (const QRgb text : {0xffffffff, 0xff000000})
        EXPECT_EQ(reading(drawn({360, 60}, {text, 0}, sans(15), [](auto& p) { p.drawText(20, 35, u"Apples"_s); })),
                  "Apples");
}

TEST_F(ImageReading, FindsNothingWhereNothingIsWritten) {
    const auto nothing = [](QPainter&) {};
    for (const QRgb background : {0xffffffff, 0xff000000, 0U})
        EXPECT_EQ(reading(drawn({400, 300}, {0, background}, {}, nothing)), kNothing) << background;
    EXPECT_EQ(reading(drawn({1, 1}, kDarkOnLight, {}, nothing)), kNothing);
    const auto bar = [](QPainter& painter) { painter.fillRect(100, 200, 30, 2, Qt::black); };
    EXPECT_EQ(reading(drawn({400, 300}, kDarkOnLight, {}, bar)), kNothing);
    QRandomGenerator random(2);
    const QImage leaves = drawn({400, 300}, {0, 0xffa0b090}, {}, [&](QPainter& painter) {
        painter.setRenderHint(QPainter::Antialiasing, false);
        for (int i = 0; i < 600; ++i) {
            painter.setPen(QPen(QColor::fromHsv(90, 120, int(random.bounded(60, 130))), 2));
            painter.drawArc(int(random.bounded(400)), int(random.bounded(300)), 12, 20, int(random.bounded(5760)),
                            2000);
        }
    });
    for (const QImage& picture : {leaves, grainy(leaves)}) EXPECT_EQ(reading(picture), kNothing);
}

TEST_F(ImageReading, ReadsAWordHoweverTightlyCropped) {
    const QString word = u"Save as"_s;
    for (const int pixels : {11, 16}) {
        const QRect box = QFontMetrics(sans(pixels)).tightBoundingRect(word);
        for (const int border : {2, 60}) {
            const auto draw = [&](QPainter& p) { p.drawText(QPoint(border, border) - box.topLeft(), word); };
            const QSize size = box.size() + QSize(2 * border, 2 * border);
            for (const TextColours& colours : {kDarkOnLight, kLightOnDark})
                EXPECT_EQ(reading(drawn(size, colours, sans(pixels), draw)), word.toStdString())
                    << pixels << " pixels, " << border << " around";
        }
    }
}

TEST_F(ImageReading, FailsWhereThereIsNoLanguageOrImage) {
    qputenv("TESSDATA_PREFIX", path());
    EXPECT_EQ(reading(drawPage({u"Plums"_s}, sans(15), kDarkOnLight)), "0 no language to read is installed");
    qunsetenv("TESSDATA_PREFIX");
    write("text.png", "Not a picture, though it is called one.");
    EXPECT_EQ(reading("text.png"), "1 couldn't open the image");
}

constexpr const char* kText = "Minutes of the garden club\nPresent: Anna, Tom & 14 others";

/// A page of the given size in points, and a second one.
void writePdf(const QString& path, QSizeF points) {
    QPdfWriter writer(path);
    writer.setPageSize(QPageSize(points, QPageSize::Point));
    writer.setPageMargins({});
    writer.setResolution(72);
    QPainter painter(&writer);
    painter.setFont(face(u"Liberation Serif"_s, 12));
    int y = 60;
    for (const QString& line : QString::fromLatin1(kText).split(u'\n')) painter.drawText(60, y += 20, line);
    writer.newPage();
    painter.drawText(60, 80, u"This is on the second page"_s);
}

TEST_F(PdfReading, ReadsTheFirstPageOnly) {
    writePdf(place("two.pdf"), {595.276, 841.89});
    EXPECT_EQ(reading("two.pdf"), kText);
}

TEST_F(PdfReading, FailsWhereThereIsNoPageToRead) {
    const QByteArray head("%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n2 0 obj<</Type/Pages/Kids");
    write("text.pdf", "Not a document, though it is called one.");
    write("pageless.pdf", head + "[]/Count 0>>endobj\ntrailer<</Root 1 0 R>>\n%%EOF\n");
    write("locked.pdf", head + R"([3 0 R]/Count 1>>endobj
3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 200 100]>>endobj
4 0 obj<</Filter/Standard/V 1/R 2/P -4/O(kkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkk)/U(kkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkk)>>endobj
trailer<</Root 1 0 R/Encrypt 4 0 R/ID[(a)(a)]>>
%%EOF
)");
    for (const char* name : {"text.pdf", "pageless.pdf", "locked.pdf"})
        EXPECT_EQ(reading(name), "4 couldn't open the PDF") << name;
    writePdf(place("wall.pdf"), {14400, 14400});
    EXPECT_EQ(reading("wall.pdf"), "5 ") << "larger than any paper";
    QPainter(std::make_unique<QPdfWriter>(place("blank.pdf")).get()).end();
    EXPECT_EQ(reading("blank.pdf"), kNothing);
    writePdf(place("whole.pdf"), {300, 200});
    const QByteArray whole = read("whole.pdf");
    for (int part = 1; part < 10; ++part) {
        write("cut.pdf", whole.left(whole.size() * part / 10));
        EXPECT_THAT(reading("cut.pdf"),
                    testing::AnyOf(testing::MatchesRegex("[467] .*"), testing::HasSubstr("Minutes")))
            << part;
    }
}

TEST(Languages, AreTheUsersAndEnglish) {
    for (const auto& [spoken, names] : {std::pair("", "eng"),
                                        {"C", "eng"},
                                        {"de-AT de en-US", "deu+eng"},
                                        {"fr-FR es it", "fra+spa+eng"},
                                        {"nb-NO nn-NO", "nor+eng"},
                                        {"zh-CN", "chi_sim+eng"},
                                        {"zh-Hant-TW", "chi_tra+eng"},
                                        {"sr-Latn-RS", "srp_latn+eng"}})
        EXPECT_EQ(recognitionLanguages(QString::fromLatin1(spoken).split(u' ', Qt::SkipEmptyParts)), names) << spoken;
}

}  // namespace
