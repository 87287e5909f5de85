#include <cstdint>
#include <cstdlib>

#include "platform/FileUrls.h"
#include "shelf/NewFile.h"
#include "shelf/NoteText.h"
#include "shelf/UrlList.h"

namespace {

void require(bool met) {
    if (!met) std::abort();
}

}  // namespace

/// Takes any bytes for each form of a drop: a list of URLs, a promised file's name, a text.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    for (const char* type : {"text/uri-list", "text/x-moz-url", "_NETSCAPE_URL"}) {
        for (const QUrl& url : parseUrls(QString::fromLatin1(type), bytes)) {
            require(url.isValid() && !url.scheme().isEmpty());
            const QByteArray path = pathOf(url);
            require(path.isEmpty() || (path.startsWith('/') && !path.contains('\0') && pathOf(fileUrl(path)) == path));
        }
    }
    const QString name = sanitizedFileName(bytes);
    require(!name.isEmpty() && !name.startsWith(u'.') && !name.contains(u'/') && !name.contains(QChar(0)));
    require(name.toUtf8().size() <= 255);
    const QString text = QString::fromUtf8(bytes);
    require(text.startsWith(firstCharacters(text)));
    return 0;
}
