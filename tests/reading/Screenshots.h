#pragma once

#include <QFont>
#include <QImage>
#include <QStringList>
#include <functional>
#include <vector>

class QPainter;

/// A drawn piece of a desktop, and the text on it as a person would read it out, line by line. All need a
/// QGuiApplication.
struct Screenshot {
    QString name;
    QImage picture;
    QString text;
};

struct TextColours {
    QRgb text, background;
};

constexpr TextColours kDarkOnLight{0xff202124, 0xffffffff}, kLightOnDark{0xffdfe1e5, 0xff1e1f22};

QFont face(const QString& family, int pixels);
/// Twelve of them.
const QStringList& sentences();

QImage drawn(QSize size, TextColours colours, const QFont& font, const std::function<void(QPainter&)>& draw);
/// The lines below one another, with a margin.
QImage drawPage(const QStringList& lines, const QFont& font, TextColours colours);
/// With a camera's grain.
QImage grainy(QImage picture);
QImage jpegged(const QImage& picture);

Screenshot page(const QString& family, int pixels, bool dark);
Screenshot columns(const QString& family, int pixels, bool dark);
/// A window with a dark bar, a marked row, a coloured button, and beside the text a picture and icons: shapes that must
/// not be taken for letters.
Screenshot window(const QString& family, int pixels);
/// Several times as tall as the text below it.
Screenshot headline(const QString& family, int pixels, TextColours colours);
/// What is framed, or large, or one character, or lies on a side or on its head: all of it is read without a fault.
std::vector<Screenshot> oddScreenshots();
