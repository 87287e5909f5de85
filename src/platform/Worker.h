#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QStringList>
#include <memory>
#include <optional>

#include "platform/Descriptor.h"
#include "platform/ResultFile.h"

/// Runs the jobs that decode files which nobody vouches for, each in a process of its own. Any thread but the main one;
/// a job may be asked for while another's disk has not answered yet.
class Worker {
 public:
    static constexpr qsizetype kMaxBytes = 8 << 20;

    virtual ~Worker() = default;

    /// A file in this folder for a job to write its result into. Null when none can be made there; `errno` says why.
    virtual std::unique_ptr<ResultFile> resultIn(const QByteArray& folder) = 0;

    /// Runs one job and waits for its answer, a minute at most. `source` is an open file at its beginning, `result`
    /// what to write into, or null; no other file of the user's is looked at. Absent when the job could not be started,
    /// crashed or went over a limit.
    ///
    /// Requests: {"chew", "jpeg" | "png" | "smaller"}, answered with {} when the result is written;
    /// {"read", "image" | "pdf"}, answered with {"text": string};
    /// {"thumbnail", side}, answered with {"width": number, "height": number, "pixels": string}: an upright sRGB
    /// picture of at most `side` (1 to 96) pixels each way and no larger than its source, in rows from the top, as
    /// base64 of red, green, blue and alpha with 8 bits each, not premultiplied. A job that fails is answered with
    /// {"error": {"code": number, "description": string}} instead. What is answered and written is to be trusted no
    /// more than the source is.
    virtual std::optional<QJsonObject> run(const QStringList& request, int source, const ResultFile* result) = 0;

    /// Runs a job without a result on a picture that is not a file. Absent also when it has more than kMaxBytes.
    std::optional<QJsonObject> run(const QStringList& request, const QByteArray& picture) {
        if (picture.size() > kMaxBytes) return {};
        return run(request, fileInMemory(picture).get(), nullptr);
    }
};
