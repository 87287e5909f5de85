#pragma once

#include <QByteArray>
#include <memory>

#include "platform/Descriptor.h"
#include "platform/ResultFile.h"

/// A file that has no name until name() gives it one. On file systems without O_TMPFILE it has a hidden name, which a
/// helper process removes when this one dies.
class UnnamedFile : public ResultFile {
 public:
    /// Creates a file in `folder`; null on failure, with the reason in `errno`.
    static std::unique_ptr<UnnamedFile> in(const QByteArray& folder);

    ~UnnamedFile() override;
    UnnamedFile(const UnnamedFile&) = delete;
    UnnamedFile& operator=(const UnnamedFile&) = delete;

    int descriptor() const override { return file_.get(); }
    bool finish() override;
    Naming name(const QByteArray& fileName) override;
    QByteArray folder() const override;
    qsizetype maxNameLength() const override;

 private:
    explicit UnnamedFile(Descriptor folder) : folder_(std::move(folder)) {}

    bool open();
    bool openHidden();
    Naming link(const QByteArray& fileName);
    Naming rename(const QByteArray& fileName);

    Descriptor folder_;
    Descriptor file_;
    QByteArray hiddenName_;  // empty for a file without a name
    Descriptor lifeline_;    // the remover waits until it is closed
    pid_t remover_ = -1;
};
