#pragma once

#include <QByteArray>
#include <chrono>

#include "platform/Worker.h"

/// Does each job in a process of `glimmet-worker`, of which nothing is left when run() returns, save what may have to
/// remove a result that was given up.
class WorkerProcess : public Worker {
 public:
    /// `program` is the worker's path. Its own limit is a minute; who takes longer than `patience` is killed.
    explicit WorkerProcess(QByteArray program, std::chrono::milliseconds patience = std::chrono::seconds(65))
        : program_(std::move(program)), patience_(patience) {}

    std::optional<QJsonObject> run(const QStringList& request) override;

 private:
    QByteArray program_;
    std::chrono::milliseconds patience_;
};
