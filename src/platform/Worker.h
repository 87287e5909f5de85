#pragma once

#include <QJsonObject>
#include <QStringList>
#include <optional>

/// Runs the jobs that open files which nobody vouches for, each in a process of its own.
class Worker {
 public:
    virtual ~Worker() = default;

    /// Runs one job and waits for its answer, a minute at most: only away from the main thread, one job at a time.
    /// Absent when the job could not be started, crashed or went over a limit.
    ///
    /// Requests: {"chew", "jpeg" | "png" | "smaller", source URL, fallback folder URL} answered with
    /// {"file": URL}, and {"read", source URL} answered with {"text": string}; both with
    /// {"error": {"domain": string, "code": number, "description": string}} instead if they fail. URLs are encoded.
    virtual std::optional<QJsonObject> run(const QStringList& request) = 0;
};
