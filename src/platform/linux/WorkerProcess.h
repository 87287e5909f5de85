#pragma once

#include <QString>
#include <chrono>

#include "platform/Worker.h"

/// Does each job in a process of its own, which is gone when run() returns. It gets the source as its standard input,
/// the result as descriptor 3, and of the environment only what says where libraries are and which languages to read.
class WorkerProcess : public Worker {
 public:
    /// `program` is the worker's path. It limits itself to a minute; after `patience` it is killed.
    explicit WorkerProcess(QString program, std::chrono::milliseconds patience = std::chrono::seconds(65))
        : program_(std::move(program)), patience_(patience) {}

    using Worker::run;
    std::unique_ptr<ResultFile> resultIn(const QByteArray& folder) override;
    std::optional<QJsonObject> run(const QStringList& request, int source, const ResultFile* result) override;

 private:
    QString program_;
    std::chrono::milliseconds patience_;
};
