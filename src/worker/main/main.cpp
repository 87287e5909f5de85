#include <fcntl.h>
#include <unistd.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <vector>

#include "worker/Chew.h"
#include "worker/Confinement.h"
#include "worker/ReadText.h"

namespace {

QJsonObject answer(const Failure& failure) {
    const QJsonObject error{{QStringLiteral("code"), failure.code},
                            {QStringLiteral("description"), failure.description}};
    return {{QStringLiteral("error"), error}};
}

QJsonObject answer(const std::optional<Failure>& chewed) {
    return chewed ? answer(*chewed) : QJsonObject();
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

std::optional<Document> documentCalled(const QByteArray& name) {
    if (name == "image") return Document::image;
    if (name == "pdf") return Document::pdf;
    return {};
}

/// Absent if there is no such job, or if it cannot be done safely.
std::optional<QJsonObject> run(const std::vector<QByteArray>& request) {
    const QByteArray job = request.size() == 2 ? request[0] : QByteArray();
    const auto mode = job == "chew" ? modeCalled(request[1]) : std::nullopt;
    const auto document = job == "read" ? documentCalled(request[1]) : std::nullopt;
    if (!mode && !document) {
        std::fputs(
            "usage: glimmet-worker chew (jpeg|png|smaller) <SOURCE 3>RESULT\n"
            "       glimmet-worker read (image|pdf) <SOURCE\n",
            stderr);
        return {};
    }
    if (!limitResources() || !restrictAccess()) return {};
    if (document) return answer(readText(STDIN_FILENO, *document));
    const bool hasResult = ::fcntl(kResult, F_GETFD) >= 0;
    return answer(chew(STDIN_FILENO, *mode, hasResult ? kResult : -1));
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
