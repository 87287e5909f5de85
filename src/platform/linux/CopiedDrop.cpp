#include "platform/linux/CopiedDrop.h"

#include <algorithm>

#include "platform/DropTypes.h"

namespace {
/// Qt's type for any text, or the source's own.
bool isText(const QString& format) {
    return format == QLatin1String("text/plain") || format == DropTypes::kText;
}

bool isUsable(const QString& format) {
    using namespace DropTypes;
    return isText(format) || std::ranges::find(kAddresses, format) != kAddresses.end() ||
           std::ranges::find(kImages, format, &Image::type) != kImages.end();
}
}  // namespace

CopiedDrop::CopiedDrop(const QMimeData& offered) {
    for (const QString& format : offered.formats()) {
        if (!isUsable(format)) continue;
        const QString type = isText(format) ? DropTypes::kText : format;
        const QByteArray bytes = isText(format) ? offered.text().toUtf8() : offered.data(format);
        if (bytes.isEmpty() || types_.contains(type)) continue;
        types_.append(type);
        forms_.insert(type, bytes);
    }
}

bool CopiedDrop::hasUsableForm(const QMimeData& offered) {
    return std::ranges::any_of(offered.formats(), isUsable);
}

void CopiedDrop::load(const QString& type, std::function<void(std::optional<QByteArray>)> done) {
    const auto form = forms_.constFind(type);
    done(form == forms_.constEnd() ? std::nullopt : std::optional(*form));
}
