#include "reading/Screenshots.h"

#include <QBuffer>
#include <QFontMetrics>
#include <QPainter>
#include <QRadialGradient>
#include <QRandomGenerator>
#include <algorithm>
#include <numeric>

namespace {

const QStringList& sentences() {
    static const QStringList lines{
        QStringLiteral("The quick brown fox jumps over the lazy dog."),
        QStringLiteral("Invoice 20318 was paid on 14 March, 9:45 pm"),
        QStringLiteral("Please move the meeting to Thursday, room B7."),
        QStringLiteral("Total: $1,284.50 (including 19% tax)"),
        QStringLiteral("Battery is at 67%, about 3 hours left"),
        QStringLiteral("Copy the files before you unplug the drive!"),
        QStringLiteral("Where did everybody put the blue umbrella?"),
        QStringLiteral("Mixing jazz vinyl quickly pleased the DJ."),
        QStringLiteral("Version 4.12 fixes six bugs and adds two."),
        QStringLiteral("Send it to Margaret & Oliver by Friday"),
        QStringLiteral("Chapter 8: Winter in the northern harbour"),
        QStringLiteral("\"Nothing is lost,\" she said, and smiled."),
    };
    return lines;
}

QString joined(const QStringList& lines) {
    return lines.join(u'\n');
}

/// Draws the lines from `top` down and gives where the next would start.
int drawLines(QPainter& painter, const QStringList& lines, int left, int top) {
    const QFontMetrics metrics(painter.font());
    for (const QString& line : lines) {
        painter.drawText(left, top + metrics.ascent(), line);
        top += metrics.lineSpacing() + metrics.height() / 4;
    }
    return top;
}

QImage canvas(int width, int height, QRgb background) {
    QImage picture(width, height, QImage::Format_RGB32);
    picture.fill(background);
    return picture;
}

QImage drawColumns(const QStringList& left, const QStringList& right, const QFont& font, Ink ink) {
    const QFontMetrics metrics(font);
    const int column = metrics.averageCharWidth() * 50;
    QImage picture = canvas(2 * column + 60, 40 + int(left.size()) * metrics.height() * 3 / 2, ink.background);
    QPainter painter(&picture);
    painter.setFont(font);
    painter.setPen(QColor::fromRgb(ink.text));
    drawLines(painter, left, 20, 16);
    drawLines(painter, right, column + 50, 16);
    return picture;
}

/// A window with a dark bar, a marked row and a coloured button around an ordinary page.
Screenshot drawWindow(const QString& family, int pixels) {
    const QFont font = face(family, pixels);
    const QFontMetrics metrics(font);
    const int row = metrics.height() * 2;
    QImage picture = canvas(metrics.averageCharWidth() * 60, row * 9, 0xfff6f5f4);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(font);
    const auto write = [&](int line, QRgb color, const QString& text) {
        painter.setPen(QColor::fromRgb(color));
        painter.drawText(20, line * row + (row + metrics.ascent() - metrics.descent()) / 2, text);
    };
    painter.fillRect(0, 0, picture.width(), row, QColor(0x2d, 0x2f, 0x36));
    write(0, 0xffffffff, QStringLiteral("Travel plans for the summer"));
    write(1, 0xff2e3436, sentences()[2]);
    write(2, 0xff2e3436, sentences()[4]);
    painter.fillRect(0, 3 * row, picture.width(), row, QColor(0x35, 0x84, 0xe4));
    write(3, 0xffffffff, sentences()[5]);
    write(4, 0xff2e3436, sentences()[8]);
    write(5, 0xff8a8d90, sentences()[9]);
    write(6, 0xff2e3436, sentences()[1]);
    painter.setBrush(QColor(0xc0, 0x1c, 0x28));
    painter.setPen(Qt::NoPen);
    painter.drawRoundedRect(8, 7 * row + 4, metrics.horizontalAdvance(QStringLiteral("Delete everything")) + 24,
                            row - 8, 6, 6);
    write(7, 0xffffffff, QStringLiteral("Delete everything"));
    return {QStringLiteral("window"), picture,
            joined({QStringLiteral("Travel plans for the summer"), sentences()[2], sentences()[4], sentences()[5],
                    sentences()[8], sentences()[9], sentences()[1], QStringLiteral("Delete everything")})};
}

/// A headline several times as tall as the text below it.
Screenshot drawHeadline(const QString& family, int pixels, Ink ink) {
    QImage picture = canvas(760, 330, ink.background);
    QPainter painter(&picture);
    painter.setPen(QColor::fromRgb(ink.text));
    QFont large = face(family, pixels * 5);
    large.setBold(true);
    painter.setFont(large);
    const QStringList headline{QStringLiteral("Good morning")};
    const int below = drawLines(painter, headline, 20, 16);
    painter.setFont(face(family, pixels));
    drawLines(painter, sentences().mid(3, 6), 20, below);
    return {QStringLiteral("headline"), picture, joined(headline + sentences().mid(3, 6))};
}

/// Text below a picture and beside icons: shapes that must not be taken for letters.
Screenshot drawGallery(const QString& family, int pixels) {
    QImage picture = canvas(700, 420, 0xff24273a);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int i = 0; i < 5; ++i) {
        QRadialGradient gradient(90 + 130 * i, 80, 90, 60 + 130 * i, 50);
        gradient.setColorAt(0, QColor::fromHsv(70 * i, 200, 250));
        gradient.setColorAt(1, QColor::fromHsv(70 * i + 40, 220, 60));
        painter.setPen(Qt::NoPen);
        painter.setBrush(gradient);
        painter.drawEllipse(30 + 130 * i, 20, 110, 110);
    }
    painter.setFont(face(family, pixels));
    const QStringList lines = sentences().mid(0, 5);
    for (int i = 0; i < lines.size(); ++i) {
        const int top = 160 + 50 * i;
        painter.setPen(QPen(QColor(0x8a, 0xad, 0xf4), 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(30, top, 28, 28);
        painter.drawLine(37, top + 14, 42, top + 20);
        painter.drawLine(42, top + 20, 51, top + 8);
        painter.setPen(QColor(0xca, 0xd3, 0xf5));
        painter.drawText(80, top + 14 + pixels / 3, lines[i]);
    }
    return {QStringLiteral("gallery"), picture, joined(lines)};
}

/// Words with a frame around each, which may be round at its ends.
Screenshot drawButtons(const QStringList& words, double radius, Ink ink) {
    QImage picture = canvas(20 + 130 * int(words.size()), 60, ink.background);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QColor::fromRgb(ink.text));
    painter.setFont(face(QStringLiteral("DejaVu Sans"), 15));
    for (int i = 0; i < words.size(); ++i) {
        const QRectF button(10.5 + 130 * i, 10.5, 110, 38);
        painter.drawRoundedRect(button, radius, radius);
        painter.drawText(button, Qt::AlignCenter, words[i]);
    }
    return {QStringLiteral("buttons %1").arg(radius), picture, words.join(u' ')};
}

QImage jpegged(const QImage& picture) {
    QBuffer bytes;
    picture.save(&bytes, "JPEG", 60);
    return QImage::fromData(bytes.data());
}

Screenshot page(const QString& family, int pixels, bool dark) {
    const QFont font = face(family, pixels);
    return {
        QStringLiteral("%1 %2 %3").arg(family).arg(pixels).arg(dark ? QStringLiteral("dark") : QStringLiteral("light")),
        drawPage(sentences(), font, dark ? lightOnDark : darkOnLight), joined(sentences())};
}

Screenshot columns(const QString& family, int pixels, bool dark) {
    const QStringList left = sentences().mid(0, 6);
    const QStringList right = sentences().mid(6, 6);
    return {QStringLiteral("columns %1 %2").arg(family).arg(pixels),
            drawColumns(left, right, face(family, pixels), dark ? lightOnDark : darkOnLight), joined(left + right)};
}

}  // namespace

QImage grainy(QImage picture) {
    QRandomGenerator random(1);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const int value = std::clamp(qGray(picture.pixel(x, y)) + int(random.bounded(41)) - 20, 0, 255);
            picture.setPixel(x, y, qRgb(value, value, value));
        }
    }
    return picture;
}

QFont face(const QString& family, int pixels) {
    QFont font(family);
    font.setPixelSize(pixels);
    return font;
}

QImage drawPage(const QStringList& lines, const QFont& font, Ink ink) {
    const QFontMetrics metrics(font);
    int widest = 0;
    for (const QString& line : lines) widest = std::max(widest, metrics.horizontalAdvance(line));
    QImage picture = canvas(widest + 48, 40 + int(lines.size()) * metrics.height() * 3 / 2, ink.background);
    QPainter painter(&picture);
    painter.setFont(font);
    painter.setPen(QColor::fromRgb(ink.text));
    drawLines(painter, lines, 20, 16);
    return picture;
}

std::vector<Screenshot> oddScreenshots() {
    const QString sans = QStringLiteral("Liberation Sans");
    const QStringList buttons{QStringLiteral("Cancel"), QStringLiteral("Save"), QStringLiteral("Delete")};
    std::vector<Screenshot> all;
    for (const double radius : {0, 8, 19}) all.push_back(drawButtons(buttons, radius, darkOnLight));
    all.push_back(drawButtons({QStringLiteral("OK")}, 4, lightOnDark));
    const struct {
        const char* text;
        int pixels;
        Ink ink;
    } large[] = {{"BIG", 267, darkOnLight}, {"Welcome", 400, lightOnDark}, {"SALE", 700, darkOnLight},
                 {"A", 16, darkOnLight},    {"7", 32, lightOnDark},        {"Q", 300, darkOnLight}};
    for (const auto& [text, pixels, ink] : large) {
        const QString line = QString::fromLatin1(text);
        all.push_back({QStringLiteral("%1 %2").arg(line).arg(pixels), drawPage({line}, face(sans, pixels), ink), line});
    }
    const auto turn = [&](const Screenshot& shot) {
        for (const int angle : {90, 180, 270}) {
            all.push_back({QStringLiteral("%1 at %2").arg(shot.name).arg(angle),
                           shot.picture.transformed(QTransform().rotate(angle)), shot.text});
        }
    };
    turn(page(sans, 16, true));
    turn(drawWindow(sans, 15));
    turn({QStringLiteral("word"), drawPage({QStringLiteral("Settings")}, face(sans, 14), darkOnLight),
          QStringLiteral("Settings")});
    turn({QStringLiteral("grainy jpeg"), jpegged(grainy(page(sans, 24, false).picture)), joined(sentences())});
    return all;
}

std::vector<Screenshot> allScreenshots() {
    std::vector<Screenshot> all = oddScreenshots();
    for (const QString& family :
         {QStringLiteral("DejaVu Sans"), QStringLiteral("Liberation Sans"), QStringLiteral("FreeSans"),
          QStringLiteral("Liberation Serif"), QStringLiteral("DejaVu Sans Mono")}) {
        for (const int pixels : {12, 14, 16, 20}) {
            for (const bool dark : {false, true}) all.push_back(page(family, pixels, dark));
        }
        all.push_back(columns(family, 13, false));
        all.push_back(columns(family, 15, true));
    }
    const QString family = QStringLiteral("DejaVu Sans");
    const QString other = QStringLiteral("Liberation Sans");
    const auto add = [&](const QString& name, Screenshot shot) {
        shot.name = name;
        all.push_back(std::move(shot));
    };
    add(QStringLiteral("window 13"), drawWindow(family, 13));
    add(QStringLiteral("window 15"), drawWindow(other, 15));
    add(QStringLiteral("window 26"), drawWindow(family, 26));
    add(QStringLiteral("headline 13 light"), drawHeadline(family, 13, darkOnLight));
    add(QStringLiteral("headline 14 dark"), drawHeadline(other, 14, lightOnDark));
    add(QStringLiteral("gallery 15"), drawGallery(family, 15));
    add(QStringLiteral("pale 14"),
        {{}, drawPage(sentences(), face(other, 14), {0xffa0a0a0, 0xfff4f4f4}), joined(sentences())});
    add(QStringLiteral("dim 14"),
        {{}, drawPage(sentences(), face(family, 14), {0xff6c6f78, 0xff1e1f22}), joined(sentences())});
    add(QStringLiteral("blue on blue 14"),
        {{}, drawPage(sentences(), face(family, 14), {0xff9ecbff, 0xff0d4a8f}), joined(sentences())});
    add(QStringLiteral("jpeg 14 light"), {{}, jpegged(page(other, 14, false).picture), joined(sentences())});
    add(QStringLiteral("jpeg 14 dark"), {{}, jpegged(page(family, 14, true).picture), joined(sentences())});
    add(QStringLiteral("one word"),
        {{}, drawPage({QStringLiteral("Settings")}, face(family, 14), lightOnDark), QStringLiteral("Settings")});
    add(QStringLiteral("large 48"),
        {{}, drawPage(sentences().mid(0, 3), face(other, 48), lightOnDark), joined(sentences().mid(0, 3))});
    return all;
}

std::vector<Screenshot> fewScreenshots() {
    return {page(QStringLiteral("DejaVu Sans"), 12, false),
            page(QStringLiteral("Liberation Sans"), 13, true),
            page(QStringLiteral("FreeSans"), 14, false),
            columns(QStringLiteral("Liberation Serif"), 15, true),
            drawWindow(QStringLiteral("Liberation Sans"), 15),
            drawHeadline(QStringLiteral("Liberation Sans"), 14, lightOnDark),
            drawGallery(QStringLiteral("DejaVu Sans"), 15)};
}

double characterErrorRate(const QString& truth, const QString& read) {
    std::vector<int> row(read.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (int i = 0; i < truth.size(); ++i) {
        int diagonal = row[0];
        row[0] = i + 1;
        for (int j = 0; j < read.size(); ++j) {
            const int replaced = diagonal + (truth[i] == read[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
        }
    }
    return double(row.back()) / double(std::max(truth.size(), qsizetype(1)));
}
