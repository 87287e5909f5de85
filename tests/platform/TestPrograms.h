#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "support/Environment.h"

/// A PATH with the programs of the test and no others. Each writes down what it was started with.
class TestPrograms {
 public:
    TestPrograms() : path_("PATH", folder_.path().toUtf8()) {}

    /// `also` is a line of shell to be run before the arguments are told.
    void install(const QByteArray& name, const QByteArray& also = {}) {
        const QByteArray file = folder_.path().toUtf8() + '/' + name;
        write(file, "#!/bin/sh\n" + also + "\n{ printf '%s\\0' \"$@\"; } > " + file + ".part\n/bin/mv " + file +
                        ".part " + file + ".told\n");
        QFile(QString::fromUtf8(file)).setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    }
    /// The arguments that the program was last started with; none if it was not.
    QByteArrayList told(const QByteArray& name) const {
        return read(name + ".told").split('\0').mid(0, read(name + ".told").count('\0'));
    }
    void forget(const QByteArray& name) { QFile::remove(folder_.filePath(QString::fromUtf8(name + ".told"))); }
    QByteArray read(const QByteArray& name) const {
        QFile file(folder_.filePath(QString::fromUtf8(name)));
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }
    QByteArray folder() const { return folder_.path().toUtf8(); }

 private:
    static void write(const QByteArray& path, const QByteArray& text) {
        QFile file(QString::fromUtf8(path));
        if (!file.open(QFile::WriteOnly) || file.write(text) != text.size()) throw std::runtime_error("no program");
    }

    QTemporaryDir folder_;
    EnvironmentVariable path_;
};
