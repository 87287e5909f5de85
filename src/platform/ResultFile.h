#pragma once

#include <QByteArray>

/// A new file that nobody takes for whole before it is: until then it has no name, or a hidden one where the file
/// system has no files without. Nothing is left of it when it is given up, or when the process dies, be it killed. Its
/// mode is that of the user's other new files. Away from the main thread, as it waits for the disk.
class ResultFile {
 public:
    virtual ~ResultFile() = default;

    /// Where to write the contents, and to read them again.
    virtual int descriptor() const = 0;

    /// Call when all is written, before giving it a name: sees to it that the contents outlive a power cut. False when
    /// they cannot be written, because the disk is full for example.
    virtual bool finish() = 0;

    enum class Naming { done, taken, failed };

    /// Gives it this name in its folder, unless that is taken. No file is ever replaced.
    virtual Naming name(const QByteArray& fileName) = 0;

    /// The path of its folder, which may have been renamed since the file was made. Empty if that cannot be told.
    virtual QByteArray folder() const = 0;

    /// The longest name that its folder can hold, in bytes.
    virtual qsizetype longestName() const = 0;
};
