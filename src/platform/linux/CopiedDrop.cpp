#include "platform/linux/CopiedDrop.h"

#include <algorithm>

namespace {
const QStringList& knownFormats() {
    static const QStringList formats{QStringLiteral("text/uri-list"), QStringLiteral("text/x-moz-url"),
                                     QStringLiteral("_NETSCAPE_URL"), QStringLiteral("image/png"),
                                     QStringLiteral("image/jpeg"),    QStringLiteral("image/tiff"),
                                     QStringLiteral("image/heic"),    QStringLiteral("text/plain")};
    return formats;
}
}  // namespace

CopiedDrop::CopiedDrop(const QMimeData& offered) {
    for (const QString& format : offered.formats()) {
        if (!knownFormats().contains(format)) continue;
        const bool text = format == QLatin1String("text/plain");
        const QString type = text ? QStringLiteral("text/plain;charset=utf-8") : format;
        const QByteArray bytes = text ? offered.text().toUtf8() : offered.data(format);
        if (bytes.isEmpty()) continue;
        types_.append(type);
        forms_.insert(type, bytes);
    }
}

bool CopiedDrop::usable(const QMimeData& offered) {
    return std::any_of(knownFormats().begin(), knownFormats().end(),
                       [&](const QString& format) { return offered.hasFormat(format); });
}

void CopiedDrop::load(const QString& type, std::function<void(std::optional<QByteArray>)> done) {
    const auto form = forms_.constFind(type);
    done(form == forms_.constEnd() ? std::nullopt : std::optional(*form));
}
