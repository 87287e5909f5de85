#pragma once

#include <QByteArray>
#include <optional>

#include "worker/Descriptor.h"

/// A new file that nobody takes for whole before it is: until then it has no name, or a hidden one where the file
/// system has no files without. Nothing is left of it when it is given up, or when the process dies, be it killed; then
/// a hidden one disappears a moment later. Whoever makes it may read and write it as new files allow.
class NewFile {
 public:
    /// Absent when no file can be made in `folder`; `errno` says why. May start a process, so it comes before
    /// restrictAccess().
    static std::optional<NewFile> in(const QByteArray& folder);

    NewFile(NewFile&&) noexcept = default;
    NewFile& operator=(NewFile&&) = delete;
    ~NewFile();

    /// Where to write the contents.
    int descriptor() const { return file_.get(); }

    const QByteArray& folder() const { return path_; }
    int folderDescriptor() const { return folder_.get(); }
    /// Whether a name for it to lose is there, so that naming it removes one.
    bool isHidden() const { return !hiddenName_.isEmpty(); }

    /// Call when all is written, before giving it a name: sees to it that the contents outlive a power cut. False when
    /// they cannot be written, because the disk is full for example.
    bool finish();

    enum class Naming { done, taken, failed };

    /// Gives it this name in its folder, unless that is taken. No file is ever replaced.
    Naming name(const QByteArray& fileName);

    /// The longest name that its folder can hold, in bytes.
    qsizetype longestName() const;

 private:
    NewFile(QByteArray path, Descriptor folder) : path_(std::move(path)), folder_(std::move(folder)) {}

    bool openHidden();
    Naming link(const QByteArray& fileName);
    Naming rename(const QByteArray& fileName);

    QByteArray path_;
    Descriptor folder_;
    Descriptor file_;
    QByteArray hiddenName_;  // until it gets the proper one; empty for a file without a name
    Descriptor lifeline_;    // while it is open, the remover waits
    pid_t remover_ = -1;
};
