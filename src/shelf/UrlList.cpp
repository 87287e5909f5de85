#include "shelf/UrlList.h"

#include <QStringDecoder>
#include <QSysInfo>
#include <algorithm>

#include "platform/FileUrls.h"

namespace {

constexpr int kMaxUrls = 2000;
constexpr qsizetype kMaxBytes = qsizetype(kMaxUrls) * 512;
constexpr qsizetype kMaxAddress = 8 << 10;
// Limits of Linux: PATH_MAX without its final zero, and NAME_MAX.
constexpr qsizetype kMaxPath = 4095, kMaxName = 255;

/// The last `kMaxBytes` of `bytes`, without a partial first line.
QByteArray ending(const QByteArray& bytes) {
    if (bytes.size() <= kMaxBytes) return bytes;
    const qsizetype start = bytes.indexOf('\n', bytes.size() - kMaxBytes);
    return start < 0 ? QByteArray() : bytes.mid(start + 1);
}

bool isPossiblePath(const QByteArray& path) {
    if (!path.startsWith('/') || path.contains('\0') || path.size() > kMaxPath) return false;
    const auto names = path.split('/');
    return std::all_of(names.begin(), names.end(), [](const auto& name) { return name.size() <= kMaxName; });
}

void add(const QByteArray& line, UrlList& list) {
    // Percent-encoding may triple the length of a path.
    if (line.size() > 3 * kMaxPath + kMaxName || isDataUrl(line)) return;
    QUrl url = QUrl::fromEncoded(line);
    if (!url.isValid() || url.scheme().isEmpty()) return;
    if (url.isLocalFile()) {
        // By XDND, sources name the host that the file is on.
        const QString host = url.host();
        if (host == QLatin1String("localhost") || host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0)
            url.setHost(QString());
        const QByteArray path = pathOf(url);
        if (url.host().isEmpty()) {
            if (isPossiblePath(path)) list.files.append(fileUrl(path));
            return;
        }
    }
    if (url.toEncoded().size() <= kMaxAddress) list.links.append(url);
}

void keepLast(QList<QUrl>& urls) {
    if (urls.size() > kMaxUrls) urls.remove(0, urls.size() - kMaxUrls);
}

}  // namespace

UrlList parseUrls(const QString& type, const QByteArray& bytes) {
    UrlList list;
    const bool utf16 = type == QLatin1String("text/x-moz-url");
    const QByteArray text = utf16 ? QString(QStringDecoder(QStringDecoder::Utf16LE)(bytes)).toUtf8() : bytes;
    // Some programs put a title on the next line.
    const qsizetype end = text.indexOf('\n');
    const QByteArray first = (end < 0 ? text : text.first(end)).trimmed();
    list.image = imageInDataUrl(first);
    if (type != QLatin1String("text/uri-list")) {
        add(first, list);
        return list;
    }
    for (const QByteArray& line : ending(text).split('\n')) {
        if (!line.startsWith('#')) add(line.trimmed(), list);
    }
    keepLast(list.files);
    keepLast(list.links);
    return list;
}
