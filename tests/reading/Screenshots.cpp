#include "reading/Screenshots.h"

#include <QBuffer>
#include <QFontMetrics>
#include <QPainter>
#include <QRadialGradient>
#include <QRandomGenerator>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Draws the lines from `top` down and gives where the next would start.
int drawLines(QPainter& painter, const QStringList& lines, int left, int top) {
    const QFontMetrics metrics(painter.font());
    for (const QString& line : lines) {
        painter.drawText(left, top + metrics.ascent(), line);
        top += metrics.lineSpacing() + metrics.height() / 4;
    }
    return top;
}

int heightFor(const QStringList& lines, const QFont& font) {
    return 40 + int(lines.size()) * QFontMetrics(font).height() * 3 / 2;
}

/// Words with a frame around each, which may be round at its ends.
Screenshot buttons(const QStringList& words, double radius, TextColours colours) {
    const auto draw = [&](QPainter& painter) {
        for (int i = 0; i < words.size(); ++i) {
            const QRectF button(10.5 + 130 * i, 10.5, 110, 38);
            painter.drawRoundedRect(button, radius, radius);
            painter.drawText(button, Qt::AlignCenter, words[i]);
        }
    };
    return {u"buttons %1"_s.arg(radius),
            drawn({20 + 130 * int(words.size()), 60}, colours, face(u"DejaVu Sans"_s, 15), draw), words.join(u' ')};
}

}  // namespace

QFont face(const QString& family, int pixels) {
    QFont font(family);
    font.setPixelSize(pixels);
    return font;
}

const QStringList& sentences() {
    static const QStringList lines{
        u"The quick brown fox jumps over the lazy dog."_s,  u"Invoice 20318 was paid on 14 March, 9:45 pm"_s,
        u"Please move the meeting to Thursday, room B7."_s, u"Total: $1,284.50 (including 19% tax)"_s,
        u"Battery is at 67%, about 3 hours left"_s,         u"Copy the files before you unplug the drive!"_s,
        u"Where did everybody put the blue umbrella?"_s,    u"Mixing jazz vinyl quickly pleased the DJ."_s,
        u"Version 4.12 fixes six bugs and adds two."_s,     u"Send it to Margaret & Oliver by Friday"_s,
        u"Chapter 8: Winter in the northern harbour"_s,     u"\"Nothing is lost,\" she said, and smiled."_s};
    return lines;
}

QImage drawn(QSize size, TextColours colours, const QFont& font, const std::function<void(QPainter&)>& draw) {
    QImage picture(size, qAlpha(colours.background) == 255 ? QImage::Format_RGB32 : QImage::Format_ARGB32);
    picture.fill(QColor::fromRgba(colours.background));
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(font);
    painter.setPen(QColor::fromRgb(colours.text));
    draw(painter);
    return picture;
}

QImage drawPage(const QStringList& lines, const QFont& font, TextColours colours) {
    int widest = 0;
    for (const QString& line : lines) widest = std::max(widest, QFontMetrics(font).horizontalAdvance(line));
    return drawn({widest + 48, heightFor(lines, font)}, colours, font,
                 [&](QPainter& painter) { drawLines(painter, lines, 20, 16); });
}

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

QImage jpegged(const QImage& picture) {
    QBuffer bytes;
    picture.save(&bytes, "JPEG", 60);
    return QImage::fromData(bytes.data());
}

Screenshot page(const QString& family, int pixels, bool dark) {
    return {u"%1 %2 %3"_s.arg(family).arg(pixels).arg(dark ? u"dark"_s : u"light"_s),
            drawPage(sentences(), face(family, pixels), dark ? kLightOnDark : kDarkOnLight), sentences().join(u'\n')};
}

Screenshot columns(const QString& family, int pixels, bool dark) {
    const QStringList left = sentences().mid(0, 6), right = sentences().mid(6, 6);
    const QFont font = face(family, pixels);
    const int column = QFontMetrics(font).averageCharWidth() * 50;
    const auto draw = [&](QPainter& painter) {
        drawLines(painter, left, 20, 16);
        drawLines(painter, right, column + 50, 16);
    };
    return {u"columns %1 %2"_s.arg(family).arg(pixels),
            drawn({2 * column + 60, heightFor(left, font)}, dark ? kLightOnDark : kDarkOnLight, font, draw),
            sentences().join(u'\n')};
}

Screenshot window(const QString& family, int pixels) {
    constexpr QRgb kText = 0xff2e3436, kWhite = 0xffffffff, kPale = 0xff8a8d90;
    const struct {
        QString text;
        QRgb colour = kText;
    } lines[] = {{u"Travel plans for the summer"_s, kWhite},
                 {sentences()[2]},
                 {sentences()[4]},
                 {sentences()[5], kWhite},
                 {sentences()[8]},
                 {sentences()[9], kPale},
                 {sentences()[1]},
                 {u"Delete everything"_s, kWhite}};
    const QFontMetrics metrics(face(family, pixels));
    const int row = metrics.height() * 2, width = metrics.averageCharWidth() * 70;
    QStringList texts;
    const auto draw = [&](QPainter& painter) {
        painter.fillRect(0, 0, width, row, QColor(0x2d, 0x2f, 0x36));
        painter.fillRect(0, 3 * row, width, row, QColor(0x35, 0x84, 0xe4));
        painter.setBrush(QColor(0xc0, 0x1c, 0x28));
        painter.setPen(Qt::NoPen);
        painter.drawRoundedRect(48, 7 * row + 4, metrics.horizontalAdvance(lines[7].text) + 24, row - 8, 6, 6);
        QRadialGradient gradient(width - 90, 7 * row, 90, width - 120, 6 * row);
        gradient.setColorAt(0, QColor::fromHsv(70, 200, 250));
        gradient.setColorAt(1, QColor::fromHsv(110, 220, 60));
        painter.setBrush(gradient);
        painter.drawEllipse(width - 130, 6 * row, 110, 80);
        painter.setBrush(Qt::NoBrush);
        for (const auto& [text, colour] : lines) {
            const int top = int(texts.size()) * row, middle = top + row / 2;
            painter.setPen(QPen(QColor::fromRgb(colour), 2));
            if (colour == kText) {  // an icon
                painter.drawEllipse(20, middle - 12, 24, 24);
                painter.drawPolyline(QPolygon({{26, middle}, {31, middle + 6}, {38, middle - 6}}));
            }
            painter.drawText(60, top + (row + metrics.ascent() - metrics.descent()) / 2, text);
            texts += text;
        }
    };
    const QImage picture = drawn({width, row * 9}, {kText, 0xfff6f5f4}, face(family, pixels), draw);
    return {u"window"_s, picture, texts.join(u'\n')};
}

Screenshot headline(const QString& family, int pixels, TextColours colours) {
    const QStringList above{u"Good morning"_s}, below = sentences().mid(3, 6);
    QFont large = face(family, pixels * 5);
    large.setBold(true);
    const auto draw = [&](QPainter& painter) {
        const int end = drawLines(painter, above, 20, 16);
        painter.setFont(face(family, pixels));
        drawLines(painter, below, 20, end);
    };
    return {u"headline"_s, drawn({760, 330}, colours, large, draw), (above + below).join(u'\n')};
}

std::vector<Screenshot> oddScreenshots() {
    const QString sans = u"Liberation Sans"_s;
    std::vector<Screenshot> all{buttons({u"OK"_s}, 4, kLightOnDark)};
    for (const double radius : {0, 8, 19})
        all.push_back(buttons({u"Cancel"_s, u"Save"_s, u"Delete"_s}, radius, kDarkOnLight));
    const std::tuple<QString, int, TextColours> large[] = {
        {u"BIG"_s, 267, kDarkOnLight}, {u"Welcome"_s, 400, kLightOnDark}, {u"SALE"_s, 700, kDarkOnLight},
        {u"A"_s, 16, kDarkOnLight},    {u"7"_s, 32, kLightOnDark},        {u"Q"_s, 300, kDarkOnLight}};
    for (const auto& [text, pixels, colours] : large)
        all.push_back({u"%1 %2"_s.arg(text).arg(pixels), drawPage({text}, face(sans, pixels), colours), text});
    for (const Screenshot& shot :
         {page(sans, 16, true), window(sans, 15),
          Screenshot{u"word"_s, drawPage({u"Settings"_s}, face(sans, 14), kDarkOnLight), u"Settings"_s},
          Screenshot{u"grainy jpeg"_s, jpegged(grainy(page(sans, 24, false).picture)), sentences().join(u'\n')}})
        for (const int angle : {90, 180, 270})
            all.push_back({u"%1 at %2"_s.arg(shot.name).arg(angle),
                           shot.picture.transformed(QTransform().rotate(angle)), shot.text});
    return all;
}
