#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <vector>

#include "platform/FileUrls.h"
#include "worker/Chew.h"
#include "worker/Confinement.h"
#include "worker/ReadText.h"

namespace {

/// Empty for what is no file's URL, so that opening it fails.
QByteArray pathIn(const QByteArray& url) {
    const QByteArray path = pathOf(QUrl::fromEncoded(url, QUrl::StrictMode));
    return path.contains('\0') ? QByteArray() : path;
}

QJsonObject answer(const Failure& failure) {
    const QJsonObject error{{QStringLiteral("domain"), QStringLiteral("chew")},
                            {QStringLiteral("code"), failure.code},
                            {QStringLiteral("description"), failure.description}};
    return {{QStringLiteral("error"), error}};
}

QJsonObject answer(const Result<QByteArray>& file) {
    if (const auto* failure = std::get_if<Failure>(&file)) return answer(*failure);
    const auto url = fileUrl(std::get<QByteArray>(file)).toEncoded();
    return {{QStringLiteral("file"), QString::fromLatin1(url)}};
}

QJsonObject answer(const Result<QString>& text) {
    if (const auto* failure = std::get_if<Failure>(&text)) return answer(*failure);
    return {{QStringLiteral("text"), std::get<QString>(text)}};
}

std::optional<ChewMode> modeCalled(const QByteArray& name) {
    if (name == "jpeg") return ChewMode::jpeg;
    if (name == "png") return ChewMode::png;
    if (name == "smaller") return ChewMode::smaller;
    return {};
}

/// Absent if there is no such job, or if it cannot be done safely.
std::optional<QJsonObject> run(const std::vector<QByteArray>& request) {
    if (request.size() == 4 && request[0] == "chew") {
        const auto mode = modeCalled(request[1]);
        const QByteArray source = pathIn(request[2]), fallback = pathIn(request[3]);
        if (!mode || !limitResources()) return {};
        auto result = newResult(source, fallback);
        if (!restrictAccess(result ? &*result : nullptr)) return {};
        return answer(chew(source, *mode, std::move(result)));
    }
    if (request.size() == 2 && request[0] == "read") {
        if (!limitResources() || !restrictAccess(nullptr)) return {};
        return answer(readText(pathIn(request[1])));
    }
    std::fputs(
        "usage: glimmet-worker chew (jpeg|png|smaller) SOURCE-URL FALLBACK-FOLDER-URL\n"
        "       glimmet-worker read SOURCE-URL\n",
        stderr);
    return {};
}

}  // namespace

int main(int argc, char** argv) {
    const auto result = run({argv + 1, argv + argc});
    if (!result) return EXIT_FAILURE;
    const QByteArray line = QJsonDocument(*result).toJson(QJsonDocument::Compact) + '\n';
    const bool isTold = std::fwrite(line.constData(), 1, size_t(line.size()), stdout) == size_t(line.size());
    // All is done; what the libraries would do at the end could only go wrong.
    std::_Exit(std::fflush(stdout) == 0 && isTold ? EXIT_SUCCESS : EXIT_FAILURE);
}
