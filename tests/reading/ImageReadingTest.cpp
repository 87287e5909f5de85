#include <QPainter>
#include <QRandomGenerator>

#include "reading/Reading.h"
#include "reading/Screenshots.h"
#include "worker/Languages.h"

using namespace Qt::StringLiterals;

namespace {

constexpr const char* kNothing = "7 no text found";

struct ImageReading : Reading {
    std::string reading(const QImage& picture) const {
        EXPECT_TRUE(picture.save(path("picture.png")));
        return Reading::reading("picture.png");
    }
};

QFont sans(int pixels) {
    return face(u"DejaVu Sans"_s, pixels);
}

// As measured when this was written: half a percent at most, a tenth on average.
TEST_F(ImageReading, ReadsScreenshots) {
    double sum = 0;
    const Screenshot shots[] = {page(u"DejaVu Sans"_s, 12, false), columns(u"Liberation Serif"_s, 15, true),
                                window(u"Liberation Sans"_s, 15), headline(u"Liberation Sans"_s, 14, kLightOnDark)};
    for (const Screenshot& shot : shots) {
        const std::string got = reading(shot.picture);
        const double wrong = characterErrorRate(shot.text, QString::fromStdString(got));
        EXPECT_LE(wrong, 0.01) << shot.name.toStdString() << ":\n" << got;
        sum += wrong;
    }
    EXPECT_LE(sum / double(std::size(shots)), 0.004);
}

TEST_F(ImageReading, ReadsWhatLiesOnItsSideOrIsFramedOrLarge) {
    for (const Screenshot& shot : oddScreenshots())
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
    QLinearGradient sky(0, 0, 400, 300);
    sky.setColorAt(0, QColor(0x20, 0x40, 0x90));
    sky.setColorAt(1, QColor(0xf0, 0xc0, 0x90));
    const auto paintSky = [&](QPainter& painter) {
        painter.fillRect(0, 0, 400, 300, sky);
        painter.fillRect(100, 200, 30, 2, Qt::white);
    };
    EXPECT_EQ(reading(drawn({400, 300}, kDarkOnLight, {}, paintSky)), kNothing);
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
    qputenv("TESSDATA_PREFIX", QFile::encodeName(path(".")));
    EXPECT_EQ(reading(drawPage({u"Plums"_s}, sans(15), kDarkOnLight)), "0 no language to read is installed");
    qunsetenv("TESSDATA_PREFIX");
    write("text.png", "Not a picture, though it is called one.");
    write("empty.png", {});
    write("headless.png", QByteArray("\x89PNG\r\n\x1a\n", 8) + QByteArray(100, 'x'));
    for (const char* name : {"text.png", "empty.png", "headless.png"})
        EXPECT_EQ(Reading::reading(name), "1 couldn't open the image") << name;
}

TEST(Languages, AreTheUsersAndEnglish) {
    for (const auto& [spoken, names] : {std::pair("", "eng"),
                                        {"C", "eng"},
                                        {"de-AT de en-US", "deu+eng"},
                                        {"fr-FR es it", "fra+spa+eng"},
                                        {"nb-NO nn-NO", "nor+eng"},
                                        {"zh-CN", "chi_sim+eng"},
                                        {"zh-Hant-TW", "chi_tra+eng"},
                                        {"sr-Latn-RS", "srp_latn+eng"},
                                        {"sr-RS", "srp+eng"},
                                        {"cs-CZ", "ces+eng"}})
        EXPECT_EQ(recognitionLanguages(QString::fromLatin1(spoken).split(u' ', Qt::SkipEmptyParts)), names) << spoken;
}

}  // namespace
