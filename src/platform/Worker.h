#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QStringList>
#include <memory>
#include <optional>

#include "platform/Descriptor.h"
#include "platform/ResultFile.h"

/// Decodes untrusted files, each job in a process of its own. Any thread except the main one; jobs may run at the same
/// time.
class Worker {
 public:
    static constexpr qsizetype kMaxBytes = 8 << 20;

    virtual ~Worker() = default;

    /// Creates a file in this folder for a job's result. Null on failure, with the reason in `errno`.
    virtual std::unique_ptr<ResultFile> resultIn(const QByteArray& folder) = 0;

    /// Runs one job and waits for its answer, about a minute at most. `source` is an open file at its beginning;
    /// `result` receives the job's output, or is null. The job sees no other file of the user's. Absent if it could not
    /// be started, crashed or exceeded a limit.
    ///
    /// Requests: {"chew", "jpeg" | "png" | "smaller"}, answered with {} when the result is written;
    /// {"read", "image" | "pdf"}, answered with {"text": string};
    /// {"thumbnail", side}, answered with {"width": number, "height": number, "pixels": string}: an upright sRGB
    /// picture of at most `side` (1 to 96) pixels each way and no larger than its source, in rows from the top, as
    /// base64 of red, green, blue and alpha with 8 bits each, not premultiplied. A job that fails is answered with
    /// {"error": {"code": number, "description": string}} instead. Answers and results are as untrusted as the source.
    virtual std::optional<QJsonObject> run(const QStringList& request, int source, const ResultFile* result) = 0;

    /// Runs a job without a result on a picture in memory. Absent also if that is larger than kMaxBytes.
    std::optional<QJsonObject> run(const QStringList& request, const QByteArray& picture) {
        if (picture.size() > kMaxBytes) return {};
        return run(request, fileInMemory(picture).get(), nullptr);
    }
};
