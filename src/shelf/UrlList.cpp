#include "shelf/UrlList.h"

#include <QStringDecoder>
#include <QSysInfo>

#include "platform/FileUrls.h"

namespace {

constexpr int kMostUrls = 2000;
constexpr qsizetype kMostBytes = qsizetype(kMostUrls) * 512;

/// The whole lines at the end of `bytes` that are read.
QByteArray ending(const QByteArray& bytes) {
    if (bytes.size() <= kMostBytes) return bytes;
    const qsizetype start = bytes.indexOf('\n', bytes.size() - kMostBytes);
    return start < 0 ? QByteArray() : bytes.mid(start + 1);
}

std::optional<QUrl> parseUrl(const QByteArray& line) {
    QUrl url = QUrl::fromEncoded(line.trimmed());
    if (!url.isValid() || url.scheme().isEmpty()) return {};
    if (!url.isLocalFile()) return url;
    // Sources that follow the rules name the machine that the file is on.
    const QString host = url.host();
    if (host == QLatin1String("localhost") || host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0)
        url.setHost(QString());
    const QByteArray path = pathOf(url);
    if (!path.startsWith('/') || path.contains('\0')) return {};
    return fileUrl(path);
}

}  // namespace

QList<QUrl> parseUrls(const QString& type, const QByteArray& bytes) {
    const bool list = type == QLatin1String("text/uri-list");
    QByteArray text = bytes;
    if (type == QLatin1String("text/x-moz-url"))
        text = QString(QStringDecoder(QStringDecoder::Utf16LE)(bytes.left(kMostBytes))).toUtf8();
    QList<QUrl> urls;
    for (const QByteArray& line : ending(text).split('\n')) {
        if (line.startsWith('#')) continue;
        if (const auto url = parseUrl(line)) urls.append(*url);
        if (!list) break;
    }
    if (urls.size() > kMostUrls) urls.remove(0, urls.size() - kMostUrls);
    return urls;
}
