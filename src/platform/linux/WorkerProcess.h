#pragma once

#include <QByteArray>
#include <chrono>

#include "platform/Worker.h"

/// Does each job in a process of `glimmet-worker`, of which nothing is left when run() has an answer. It has the source
/// as its standard input, the result as descriptor 3, and of the environment only what says which language to read.
class WorkerProcess : public Worker {
 public:
    /// `program` is the worker's path. Its own limit is a minute; who takes longer than `patience` is killed.
    explicit WorkerProcess(QByteArray program, std::chrono::milliseconds patience = std::chrono::seconds(65))
        : program_(std::move(program)), patience_(patience) {}

    std::unique_ptr<ResultFile> resultIn(const QByteArray& folder) override;
    std::optional<QJsonObject> run(const QStringList& request, int source, const ResultFile* result) override;

 private:
    QByteArray program_;
    std::chrono::milliseconds patience_;
};
