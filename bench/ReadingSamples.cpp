// What compare-reading measures with.
//   reading_samples write FOLDER     draws every screenshot as N.png with its text in N.txt and its name in N.name
//   reading_samples score TRUTH READ prints the share of wrong characters, in percent
#include <QFile>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QTextStream>

#include "reading/Screenshots.h"

namespace {

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
