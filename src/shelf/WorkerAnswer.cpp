#include "shelf/WorkerAnswer.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

namespace {

constexpr int kLastCode = 7;
constexpr qsizetype kMaxText = 1 << 18;     // UTF-16 units
constexpr qsizetype kMaxDescription = 200;  // UTF-16 units
constexpr off_t kMaxResult = 512 << 20;     // bytes

ChewError unfinished() {
    return {QStringLiteral("worker"), 0, QStringLiteral("the job did not come to its end")};
}

bool isPlain(const QString& text) {
    const auto isControl = [](QChar c) { return c.category() == QChar::Other_Control && c != u'\n' && c != u'\t'; };
    return std::ranges::none_of(text, isControl) && text.isValidUtf16();
}

QByteArray bytesAt(int descriptor, off_t place, qsizetype size) {
    QByteArray bytes(size, '\0');
    return ::pread(descriptor, bytes.data(), size_t(size), place) == size ? bytes : QByteArray();
}

}  // namespace

std::optional<ChewError> errorIn(const std::optional<QJsonObject>& answer) {
    if (!answer) return unfinished();
    const QJsonValue error = answer->value(QStringLiteral("error"));
    if (error.isUndefined()) return {};
    const int code = error[u"code"].toInt(-1);
    const QString description = error[u"description"].toString();
    if (code < 0 || code > kLastCode || description.size() > kMaxDescription || !isPlain(description))
        return unfinished();
    return ChewError{QStringLiteral("chew"), code, description};
}

std::variant<QString, ChewError> textIn(const std::optional<QJsonObject>& answer) {
    if (const auto error = errorIn(answer)) return *error;
    const QString text = answer->value(QStringLiteral("text")).toString();
    if (text.isEmpty() || text.size() > kMaxText || !isPlain(text)) return unfinished();
    return text;
}

bool isComplete(int descriptor, Chewer::Mode mode) {
    const bool isPng = mode == Chewer::Mode::toPNG;
    // A PNG starts with its header chunk and ends with an empty chunk and its checksum; a JPEG ends with a marker.
    const QByteArray start = isPng ? QByteArray("\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR", 16) : QByteArray("\xff\xd8\xff");
    const QByteArray end = isPng ? QByteArray("\0\0\0\0IEND\xae\x42\x60\x82", 12) : QByteArray("\xff\xd9");
    struct stat status = {};
    return ::fstat(descriptor, &status) == 0 && status.st_size >= start.size() + end.size() &&
           status.st_size <= kMaxResult && bytesAt(descriptor, 0, start.size()) == start &&
           bytesAt(descriptor, status.st_size - end.size(), end.size()) == end;
}
