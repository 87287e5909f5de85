#pragma once

#include <QByteArray>
#include <memory>

#include "platform/Descriptor.h"
#include "platform/ResultFile.h"

/// A file without a name, until it gets one. On a file system that has no such files it has a hidden name, which a
/// small process removes when this one dies.
class UnnamedFile : public ResultFile {
 public:
    /// Null when no file can be made in `folder`; `errno` says why.
    static std::unique_ptr<UnnamedFile> in(const QByteArray& folder);

    ~UnnamedFile() override;
    UnnamedFile(const UnnamedFile&) = delete;
    UnnamedFile& operator=(const UnnamedFile&) = delete;

    int descriptor() const override { return file_.get(); }
    bool finish() override;
    Naming name(const QByteArray& fileName) override;
    QByteArray folder() const override;
    qsizetype longestName() const override;

 private:
    explicit UnnamedFile(Descriptor folder) : folder_(std::move(folder)) {}

    bool open();
    bool openHidden();
    Naming link(const QByteArray& fileName);
    Naming rename(const QByteArray& fileName);

    Descriptor folder_;
    Descriptor file_;
    QByteArray hiddenName_;  // until it gets the proper one; empty for a file without a name
    Descriptor lifeline_;    // while it is open, the remover waits
    pid_t remover_ = -1;
};
