// What compare-reading measures with.
//   reading_samples write FOLDER     draws every screenshot as N.png with its text in N.txt and its name in N.name
//   reading_samples score TRUTH READ prints the share of wrong characters, in percent
#include <QFile>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QTextStream>
#include <algorithm>
#include <numeric>

#include "reading/Screenshots.h"

using namespace Qt::StringLiterals;

namespace {

/// Every kind of screenshot that reading is measured on.
std::vector<Screenshot> allScreenshots() {
    std::vector<Screenshot> all = oddScreenshots();
    for (const QString& family :
         {u"DejaVu Sans"_s, u"Liberation Sans"_s, u"FreeSans"_s, u"Liberation Serif"_s, u"DejaVu Sans Mono"_s}) {
        for (const int pixels : {12, 14, 16, 20})
            for (const bool dark : {false, true}) all.push_back(page(family, pixels, dark));
        all.push_back(columns(family, 13, false));
        all.push_back(columns(family, 15, true));
    }
    const QString family = u"DejaVu Sans"_s, other = u"Liberation Sans"_s;
    const auto add = [&](const QString& name, const Screenshot& shot) {
        all.push_back({name, shot.picture, shot.text});
    };
    add(u"window 13"_s, window(family, 13));
    add(u"window 15"_s, window(other, 15));
    add(u"window 26"_s, window(family, 26));
    add(u"headline 13 light"_s, headline(family, 13, kDarkOnLight));
    add(u"headline 14 dark"_s, headline(other, 14, kLightOnDark));
    const auto addPage = [&](const QString& name, const QStringList& lines, const QFont& font, TextColours colours) {
        all.push_back({name, drawPage(lines, font, colours), lines.join(u'\n')});
    };
    addPage(u"pale 14"_s, sentences(), face(other, 14), {0xffa0a0a0, 0xfff4f4f4});
    addPage(u"dim 14"_s, sentences(), face(family, 14), {0xff6c6f78, 0xff1e1f22});
    addPage(u"blue on blue 14"_s, sentences(), face(family, 14), {0xff9ecbff, 0xff0d4a8f});
    addPage(u"one word"_s, {u"Settings"_s}, face(family, 14), kLightOnDark);
    addPage(u"large 48"_s, sentences().mid(0, 3), face(other, 48), kLightOnDark);
    for (const bool dark : {false, true}) {
        const Screenshot shot = page(dark ? family : other, 14, dark);
        all.push_back({dark ? u"jpeg 14 dark"_s : u"jpeg 14 light"_s, jpegged(shot.picture), shot.text});
    }
    return all;
}

/// How many characters have to be added, dropped or replaced to make one text of the other, as a share of the truth's.
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

void put(const QString& path, const QString& text) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) qFatal("cannot write %s", qPrintable(path));
    file.write(text.toUtf8());
}

QString get(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) qFatal("cannot read %s", qPrintable(path));
    return QString::fromUtf8(file.readAll()).trimmed();
}

/// What was read, as plain text or as the worker's answer.
QString readingIn(const QString& path) {
    const QString text = get(path);
    const QJsonDocument answer = QJsonDocument::fromJson(text.toUtf8());
    return answer.isObject() ? answer[QStringLiteral("text")].toString() : text;
}

void writeSamples(int& argc, char** argv, const QString& folder) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    int number = 10;
    for (const Screenshot& shot : allScreenshots()) {
        const QString stem = folder + u'/' + QString::number(number++);
        shot.picture.save(stem + QStringLiteral(".png"));
        put(stem + QStringLiteral(".txt"), shot.text);
        put(stem + QStringLiteral(".name"), shot.name);
    }
}

}  // namespace

int main(int argc, char** argv) {
    const QByteArrayList arguments(argv + 1, argv + argc);
    QTextStream out(stdout);
    if (arguments.size() == 2 && arguments[0] == "write") {
        writeSamples(argc, argv, QFile::decodeName(arguments[1]));
    } else if (arguments.size() == 3 && arguments[0] == "score") {
        out << 100 *
                   characterErrorRate(get(QFile::decodeName(arguments[1])), readingIn(QFile::decodeName(arguments[2])))
            << '\n';
    } else {
        return 2;
    }
    return 0;
}
