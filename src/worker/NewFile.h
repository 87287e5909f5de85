#pragma once

#include <QByteArray>
#include <optional>

#include "worker/Descriptor.h"

/// A new file that has no name until it is complete, so that nobody sees half of it, and so that none of it is left
/// when the process dies before. Whoever makes it may read and write it as new files allow.
class NewFile {
 public:
    /// Absent when no file can be made in `folder`; `errno` says why.
    static std::optional<NewFile> in(const QByteArray& folder);

    NewFile(NewFile&&) noexcept = default;
    NewFile& operator=(NewFile&&) = delete;
    ~NewFile();

    /// Where to write the contents.
    int descriptor() const { return file_.get(); }

    /// Call when all is written, before giving it a name: sees to it that the contents outlive a power cut. False when
    /// they cannot be written, because the disk is full for example, or when the time is up that alarm() had set.
    bool finish();

    enum class Naming { done, taken, failed };

    /// Gives it this name in its folder, unless that is taken. No file is ever replaced.
    Naming name(const QByteArray& fileName);

    /// The longest name that its folder can hold, in bytes.
    qsizetype longestName() const;

 private:
    NewFile(Descriptor folder, Descriptor file, bool isInFolder)
        : folder_(std::move(folder)), file_(std::move(file)), isInFolder_(isInFolder) {}

    Naming link(const QByteArray& fileName);
    Naming rename(const QByteArray& fileName);

    Descriptor folder_;
    Descriptor file_;
    bool isInFolder_;        // else only in memory, as not every file system has files without a name
    QByteArray hiddenName_;  // that its copy in the folder has until it gets the proper one
};
