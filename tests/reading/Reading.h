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
    /// The text, or the failure's code and description.
    std::string reading(const char* name) const {
        const bool isPdf = path(name).endsWith(QLatin1String(".pdf"));
        const Result<QString> result =
            readText(openRegularFile(QFile::encodeName(path(name))).get(), isPdf ? Document::pdf : Document::image);
        const auto* why = std::get_if<Failure>(&result);
        return why ? std::to_string(why->code) + ' ' + why->description.toStdString()
                   : std::get<QString>(result).toStdString();
    }
    void write(const char* name, const QByteArray& bytes) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }

 private:
    QTemporaryDir folder_;
};
