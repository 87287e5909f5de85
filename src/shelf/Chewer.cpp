#include "shelf/Chewer.h"

#include <QFileInfo>

#include "platform/Worker.h"

namespace {

QString extensionOf(const QUrl& file) {
    return QFileInfo(file.fileName()).suffix().toLower();
}

QString encoded(const QUrl& url) {
    return QString::fromLatin1(url.toEncoded());
}

QString nameOf(Chewer::Mode mode) {
    switch (mode) {
        case Chewer::Mode::toJPEG:
            return QStringLiteral("jpeg");
        case Chewer::Mode::toPNG:
            return QStringLiteral("png");
        case Chewer::Mode::smaller:
            break;
    }
    return QStringLiteral("smaller");
}

/// The answer's member `key`, or why it is not there.
std::variant<QString, ChewError> answered(const std::optional<QJsonObject>& answer, const QString& key) {
    if (!answer) return ChewError{QStringLiteral("worker"), 0, QStringLiteral("the job did not come to its end")};
    const QJsonValue wanted = answer->value(key);
    if (wanted.isString()) return wanted.toString();
    const QJsonObject error = answer->value(QStringLiteral("error")).toObject();
    return ChewError{error.value(QStringLiteral("domain")).toString(QStringLiteral("worker")),
                     error.value(QStringLiteral("code")).toInt(),
                     error.value(QStringLiteral("description")).toString()};
}

}  // namespace

const QStringList& Chewer::chewableExtensions() {
    static const QStringList extensions{QStringLiteral("png"),  QStringLiteral("jpg"),  QStringLiteral("jpeg"),
                                        QStringLiteral("heic"), QStringLiteral("heif"), QStringLiteral("tiff"),
                                        QStringLiteral("tif"),  QStringLiteral("webp"), QStringLiteral("gif"),
                                        QStringLiteral("bmp")};
    return extensions;
}

bool Chewer::canChew(const QUrl& file) {
    return chewableExtensions().contains(extensionOf(file));
}

bool Chewer::canRead(const QUrl& file) {
    return canChew(file) || extensionOf(file) == QLatin1String("pdf");
}

std::variant<QUrl, ChewError> Chewer::chew(const QUrl& source, Mode mode, const QUrl& fallbackFolder) {
    const auto result =
        answered(worker_.run({QStringLiteral("chew"), nameOf(mode), encoded(source), encoded(fallbackFolder)}),
                 QStringLiteral("file"));
    if (const auto* error = std::get_if<ChewError>(&result)) return *error;
    return QUrl::fromEncoded(std::get<QString>(result).toLatin1());
}

std::variant<QString, ChewError> Chewer::readText(const QUrl& source) {
    return answered(worker_.run({QStringLiteral("read"), encoded(source)}), QStringLiteral("text"));
}
