#pragma once

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <QByteArray>
#include <filesystem>
#include <stdexcept>

/// A file in a folder of its own, to be filled again and again.
class SourceFile {
 public:
    explicit SourceFile(const QByteArray& name) {
        const char* const temporary = ::getenv("TMPDIR");
        folder_ = QByteArray(temporary ? temporary : "/tmp") + "/fuzz-XXXXXX";
        if (!::mkdtemp(folder_.data())) throw std::runtime_error("no temporary folder");
        path_ = folder_ + '/' + name;
    }
    ~SourceFile() { std::filesystem::remove_all(folder_.toStdString()); }
    SourceFile(const SourceFile&) = delete;
    SourceFile& operator=(const SourceFile&) = delete;

    const QByteArray& folder() const { return folder_; }

    /// The path of the file, which now holds these bytes.
    const QByteArray& with(const uint8_t* data, size_t size) const {
        const int file = ::open(path_.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        if (file < 0 || ::write(file, data, size) != ssize_t(size)) throw std::runtime_error("cannot write the source");
        ::close(file);
        return path_;
    }

 private:
    QByteArray folder_;
    QByteArray path_;
};
