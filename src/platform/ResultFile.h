#pragma once

#include <QByteArray>

/// A new file that cannot be mistaken for a complete one before it is: until then it has no name, or a hidden one if
/// the file system does not support unnamed files. It disappears if it is abandoned or the process dies, even if
/// killed. Its mode follows the user's umask. Blocks on the disk: away from the main thread only.
class ResultFile {
 public:
    virtual ~ResultFile() = default;

    /// For writing the contents and reading them back.
    virtual int descriptor() const = 0;

    /// Flushes the contents to the disk, so that they survive a power cut. Call it after writing and before name().
    /// False on failure, for example if the disk is full.
    virtual bool finish() = 0;

    enum class Naming { done, taken, failed };

    /// Gives the file this name in its folder, unless that is taken. Never replaces a file.
    virtual Naming name(const QByteArray& fileName) = 0;

    /// The current path of its folder, which may have been renamed. Empty if unknown.
    virtual QByteArray folder() const = 0;

    /// The maximum length of a name in its folder, in bytes.
    virtual qsizetype maxNameLength() const = 0;
};
