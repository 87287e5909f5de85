#include "platform/linux/CopiedDrop.h"

#include <algorithm>

#include "platform/DropTypes.h"

namespace {
const QString kPlainText = QStringLiteral("text/plain");  // what the toolkit calls any text

bool isUsable(const QString& format) {
    using namespace DropTypes;
    return format == kPlainText || std::ranges::find(kAddresses, format) != kAddresses.end() ||
           std::ranges::find(kImages, format, &Image::type) != kImages.end();
}
}  // namespace

CopiedDrop::CopiedDrop(const QMimeData& offered) {
    for (const QString& format : offered.formats()) {
        if (!isUsable(format)) continue;
        const bool text = format == kPlainText;
        const QString type = text ? DropTypes::kText : format;
        const QByteArray bytes = text ? offered.text().toUtf8() : offered.data(format);
        if (bytes.isEmpty()) continue;
        types_.append(type);
        forms_.insert(type, bytes);
    }
}

bool CopiedDrop::usable(const QMimeData& offered) {
    return std::ranges::any_of(offered.formats(), isUsable);
}

void CopiedDrop::load(const QString& type, std::function<void(std::optional<QByteArray>)> done) {
    const auto form = forms_.constFind(type);
    done(form == forms_.constEnd() ? std::nullopt : std::optional(*form));
}
