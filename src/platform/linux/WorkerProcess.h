#pragma once

#include <QString>
#include <chrono>

#include "platform/Worker.h"

/// Runs each job in its own process, which has ended when run() returns. It receives the source as its standard input,
/// the result as descriptor 3, and only those environment variables that affect libraries and languages.
class WorkerProcess : public Worker {
 public:
    /// `program` is the path of the worker. It limits itself to a minute, and is killed after `timeout`.
    explicit WorkerProcess(QString program, std::chrono::milliseconds timeout = std::chrono::seconds(65))
        : program_(std::move(program)), timeout_(timeout) {}

    using Worker::run;
    std::unique_ptr<ResultFile> resultIn(const QByteArray& folder) override;
    std::optional<QJsonObject> run(const QStringList& request, int source, const ResultFile* result) override;

 private:
    QString program_;
    std::chrono::milliseconds timeout_;
};
