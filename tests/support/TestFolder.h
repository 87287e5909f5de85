#pragma once

#include <QTemporaryDir>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

/// A folder of the test's own, gone with the object. Names and paths are bytes.
class TestFolder {
 public:
    // Qt cannot remove names that are not UTF-8.
    ~TestFolder() { std::filesystem::remove_all(folder_.path().toStdString()); }

    /// The path of what is called `name` in it.
    QByteArray path(const QByteArray& name = {}) const { return folder_.path().toUtf8() + '/' + name; }
    /// Writes a file, and the folders that it needs. Its path.
    QByteArray write(const QByteArray& name, const QByteArray& text) const {
        const std::filesystem::path file(path(name).toStdString());
        std::filesystem::create_directories(file.parent_path());
        if (!(std::ofstream(file, std::ios::binary) << text.toStdString())) throw std::runtime_error("no file");
        return path(name);
    }
    /// Empty where there is none.
    QByteArray read(const QByteArray& name) const {
        std::stringstream text;
        text << std::ifstream(path(name).toStdString(), std::ios::binary).rdbuf();
        return QByteArray::fromStdString(text.str());
    }
    bool has(const QByteArray& name) const { return std::filesystem::exists(path(name).toStdString()); }
    void remove(const QByteArray& name) const { std::filesystem::remove(path(name).toStdString()); }

 private:
    QTemporaryDir folder_;
};
