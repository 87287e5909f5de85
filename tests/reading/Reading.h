#pragma once

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "platform/Descriptor.h"
#include "worker/ReadText.h"

/// A folder of its own, and what reading makes of a file in it.
class Reading : public testing::Test {
 protected:
    QString path(const char* name) const { return folder_.filePath(QLatin1String(name)); }
    Result<QString> read(const char* name) const {
        const Descriptor file = openRegularFile(QFile::encodeName(path(name)));
        const bool isPdf = path(name).endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive);
        return readText(file.get(), isPdf ? Document::pdf : Document::image);
    }

    /// Empty when reading failed.
    QString text(const char* name) const {
        const Result<QString> result = read(name);
        return std::holds_alternative<QString>(result) ? std::get<QString>(result) : QString();
    }
    /// -1 when it did not.
    int failure(const char* name) const {
        const Result<QString> result = read(name);
        return std::holds_alternative<Failure>(result) ? std::get<Failure>(result).code : -1;
    }
    void write(const char* name, const QByteArray& bytes) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }

 private:
    QTemporaryDir folder_;
};
