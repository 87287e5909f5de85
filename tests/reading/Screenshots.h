#pragma once

#include <QFont>
#include <QImage>
#include <QString>
#include <QStringList>
#include <vector>

/// A drawn piece of a desktop, and the text on it as a person would read it out, line by line.
struct Screenshot {
    QString name;
    QImage picture;
    QString text;
};

struct Ink {
    QRgb text;
    QRgb background;
};

constexpr Ink darkOnLight{0xff202124, 0xffffffff};
constexpr Ink lightOnDark{0xffdfe1e5, 0xff1e1f22};

QFont face(const QString& family, int pixels);

/// The lines below one another, with a margin.
QImage drawPage(const QStringList& lines, const QFont& font, Ink ink);

/// With a camera's grain.
QImage grainy(QImage picture);

/// What is framed, or large, or one character, or lies on a side or on its head: all of it is read without a fault.
std::vector<Screenshot> oddScreenshots();

/// Every kind of screenshot that reading is measured on. Needs a QGuiApplication.
std::vector<Screenshot> allScreenshots();

/// The same without what is alike: enough to notice when reading has become worse.
std::vector<Screenshot> fewScreenshots();

/// How many characters have to be added, dropped or replaced to make one text of the other, as a share of the truth's.
double characterErrorRate(const QString& truth, const QString& read);
