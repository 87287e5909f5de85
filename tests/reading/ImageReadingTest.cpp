#include <QPainter>
#include <QRandomGenerator>

#include "reading/Reading.h"
#include "reading/Screenshots.h"

namespace {

const QStringList fruit{QStringLiteral("Apples and pears"), QStringLiteral("Plums"), QStringLiteral("Wild cherries")};

class ImageReading : public Reading {};

// As measured when this was written: half a percent at most, a tenth on average.
TEST_F(ImageReading, ReadsScreenshots) {
    double sum = 0;
    const std::vector<Screenshot> shots = fewScreenshots();
    for (const Screenshot& shot : shots) {
        ASSERT_TRUE(shot.picture.save(path("shot.png")));
        const QString got = text("shot.png");
        const double wrong = characterErrorRate(shot.text, got);
        EXPECT_LE(wrong, 0.01) << qPrintable(shot.name) << ":\n" << qPrintable(got);
        sum += wrong;
    }
    EXPECT_LE(sum / double(shots.size()), 0.004);
}

TEST_F(ImageReading, ReadsWhatLiesOnItsSideOrIsFramedOrLarge) {
    for (const Screenshot& shot : oddScreenshots()) {
        ASSERT_TRUE(shot.picture.save(path("shot.png")));
        EXPECT_EQ(text("shot.png").toStdString(), shot.text.toStdString()) << qPrintable(shot.name);
    }
}

TEST_F(ImageReading, FindsNothingWhereNothingIsWritten) {
    QImage picture(400, 300, QImage::Format_ARGB32);
    for (const QColor color : {QColor(Qt::white), QColor(Qt::black), QColor(Qt::transparent)}) {
        picture.fill(color);
        ASSERT_TRUE(picture.save(path("blank.png")));
        EXPECT_EQ(read("blank.png"), Result<QString>(Failure{7, QStringLiteral("no text found")}))
            << qPrintable(color.name());
    }
    QLinearGradient sky(0, 0, 400, 300);
    sky.setColorAt(0, QColor(0x20, 0x40, 0x90));
    sky.setColorAt(1, QColor(0xf0, 0xc0, 0x90));
    {
        QPainter painter(&picture);
        painter.fillRect(picture.rect(), sky);
        painter.fillRect(100, 200, 30, 2, Qt::white);
    }
    ASSERT_TRUE(picture.save(path("sky.png")));
    EXPECT_EQ(failure("sky.png"), 7);
    QRandomGenerator random(2);
    for (const bool isCamera : {false, true}) {
        QPainter painter(&picture);
        painter.fillRect(picture.rect(), QColor(0xa0, 0xb0, 0x90));
        for (int i = 0; i < 600; ++i) {
            painter.setPen(QPen(QColor::fromHsv(90, 120, int(random.bounded(60, 130))), 2));
            painter.drawArc(int(random.bounded(400)), int(random.bounded(300)), 12, 20, int(random.bounded(5760)),
                            2000);
        }
        painter.end();
        ASSERT_TRUE((isCamera ? grainy(picture) : picture).save(path("leaves.png")));
        EXPECT_EQ(failure("leaves.png"), 7) << qPrintable(text("leaves.png"));
    }
    ASSERT_TRUE(QImage(1, 1, QImage::Format_RGB32).save(path("dot.png")));
    EXPECT_EQ(failure("dot.png"), 7);
}

TEST_F(ImageReading, ReadsLightTextOnNothing) {
    for (const QColor color : {QColor(Qt::white), QColor(Qt::black)}) {
        QImage picture(360, 60, QImage::Format_ARGB32);
        picture.fill(Qt::transparent);
        {
            QPainter painter(&picture);
            painter.setFont(face(QStringLiteral("DejaVu Sans"), 15));
            painter.setPen(color);
            painter.drawText(20, 35, fruit[0]);
        }
        ASSERT_TRUE(picture.save(path("label.png")));
        EXPECT_EQ(text("label.png"), fruit[0]) << qPrintable(color.name());
    }
}

TEST_F(ImageReading, ReadsAWordHoweverTightlyCropped) {
    for (const QString& word : {QStringLiteral("OK"), QStringLiteral("No"), QStringLiteral("Save as")}) {
        for (const int pixels : {11, 13, 16}) {
            const QFont font = face(QStringLiteral("DejaVu Sans"), pixels);
            const QRect box = QFontMetrics(font).tightBoundingRect(word);
            for (const int border : {2, 4, 60}) {
                for (const ::Ink& ink : {darkOnLight, lightOnDark}) {
                    QImage picture(box.width() + 2 * border, box.height() + 2 * border, QImage::Format_RGB32);
                    picture.fill(ink.background);
                    {
                        QPainter painter(&picture);
                        painter.setFont(font);
                        painter.setPen(QColor::fromRgb(ink.text));
                        painter.drawText(QPoint(border, border) - box.topLeft(), word);
                    }
                    ASSERT_TRUE(picture.save(path("crop.png")));
                    EXPECT_EQ(text("crop.png"), word) << pixels << " pixels, " << border << " around";
                }
            }
        }
    }
}

TEST_F(ImageReading, ReadsAPictureLargerThanAnyScreen) {
    QImage picture(6000, 4500, QImage::Format_Grayscale8);
    picture.fill(Qt::white);
    {
        QPainter painter(&picture);
        painter.setFont(face(QStringLiteral("DejaVu Sans"), 40));
        painter.drawText(700, 3000, fruit[0]);
        painter.drawText(700, 3100, fruit[2]);
    }
    ASSERT_TRUE(picture.save(path("huge.png")));
    EXPECT_EQ(text("huge.png"), fruit[0] + u'\n' + fruit[2]);
}

TEST_F(ImageReading, FailsWhereNoLanguageIsInstalled) {
    ASSERT_TRUE(drawPage(fruit, face(QStringLiteral("DejaVu Sans"), 15), darkOnLight).save(path("a.png")));
    qputenv("TESSDATA_PREFIX", QFile::encodeName(path(".")));
    EXPECT_EQ(failure("a.png"), 0);
    qunsetenv("TESSDATA_PREFIX");
}

TEST_F(ImageReading, CannotOpenWhatIsNoImage) {
    write("text.png", "Not a picture, though it is called one.");
    write("empty.png", {});
    write("headless.png", QByteArray("\x89PNG\r\n\x1a\n", 8) + QByteArray(100, 'x'));
    for (const char* name : {"text.png", "empty.png", "headless.png"}) {
        EXPECT_EQ(read(name), Result<QString>(Failure{1, QStringLiteral("couldn't open the image")})) << name;
    }
}

}  // namespace
