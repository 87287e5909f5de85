#include <fcntl.h>
#include <unistd.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "worker/Chew.h"
#include "worker/Confinement.h"
#include "worker/ReadText.h"
#include "worker/Thumbnail.h"

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

QJsonObject answer(const Result<Thumbnail>& made) {
    if (const auto* failure = std::get_if<Failure>(&made)) return answer(*failure);
    const auto& thumbnail = std::get<Thumbnail>(made);
    return {{QStringLiteral("width"), thumbnail.width},
            {QStringLiteral("height"), thumbnail.height},
            {QStringLiteral("pixels"), QString::fromLatin1(thumbnail.pixels.toBase64())}};
}

struct Job {
    std::function<QJsonObject()> run;
    std::vector<const char*> readable;  // besides libraries
};

std::optional<Job> chewing(const QByteArray& name) {
    static const std::map<QByteArray, ChewMode> kModes{
        {"jpeg", ChewMode::jpeg}, {"png", ChewMode::png}, {"smaller", ChewMode::smaller}};
    const auto mode = kModes.find(name);
    if (mode == kModes.end()) return {};
    return Job{[mode = mode->second] {
                   const bool hasResult = ::fcntl(kResult, F_GETFD) >= 0;
                   return answer(chew(STDIN_FILENO, mode, hasResult ? kResult : -1));
               },
               {}};
}

std::optional<Job> reading(const QByteArray& name) {
    if (name != "image" && name != "pdf") return {};
    const Document kind = name == "pdf" ? Document::pdf : Document::image;
    return Job{[kind] { return answer(readText(STDIN_FILENO, kind)); }, foldersForReading()};
}

std::optional<Job> shrinking(const QByteArray& number) {
    const int side = number.toInt();
    if (side < 1 || side > kMaxThumbnailSide) return {};
    return Job{[side] { return answer(thumbnailOf(STDIN_FILENO, side)); }, {}};
}

std::optional<Job> jobCalled(const std::vector<QByteArray>& request) {
    if (request.size() != 2) return {};
    if (request[0] == "chew") return chewing(request[1]);
    if (request[0] == "read") return reading(request[1]);
    if (request[0] == "thumbnail") return shrinking(request[1]);
    return {};
}

/// Absent if there is no such job, or the process could not be confined.
std::optional<QJsonObject> run(const std::vector<QByteArray>& request) {
    const auto job = jobCalled(request);
    if (!job) {
        std::fputs(
            "usage: glimmet-worker chew (jpeg|png|smaller) <SOURCE 3>RESULT\n"
            "       glimmet-worker read (image|pdf) <SOURCE\n"
            "       glimmet-worker thumbnail SIDE <SOURCE\n",
            stderr);
        return {};
    }
    if (!limitResources() || !restrictAccess(job->readable)) return {};
    return job->run();
}

}  // namespace

int main(int argc, char** argv) {
    const auto result = run({argv + 1, argv + argc});
    if (!result) return EXIT_FAILURE;
    const QByteArray line = QJsonDocument(*result).toJson(QJsonDocument::Compact) + '\n';
    const bool isTold = std::fwrite(line.constData(), 1, size_t(line.size()), stdout) == size_t(line.size());
    // Skip static destructors: the work is done, and the libraries' cleanup could only fail.
    std::_Exit(std::fflush(stdout) == 0 && isTold ? EXIT_SUCCESS : EXIT_FAILURE);
}
