#pragma once

#include <QVariant>
#include <memory>
#include <vector>

#include "platform/BackgroundQueue.h"
#include "platform/Preferences.h"

/// Preferences in one file of text lines, "KEY = TYPE VALUE", that a person can read and mend. Main thread only.
///
/// The file is written whole, under a temporary name, flushed and renamed into place. What cannot be read stays in it
/// byte for byte until its key is written anew; a file too large or not readable at all is kept beside the new one
/// under a name of its own. Where the file cannot be written all stays in memory, and each later change tries again.
class FilePreferences : public Preferences {
 public:
    /// Reads the file. `queue` does the writing and must outlive the object, which on its end leaves nothing unwritten.
    FilePreferences(const QString& path, SerialQueue& queue);
    ~FilePreferences() override;

    /// Waits until all that was set has been written, or could not be.
    void flush();

    /// Where the user's preferences belong.
    static QString defaultPath();

    bool boolean(const QString& key) const override;
    std::optional<double> number(const QString& key) const override;
    std::optional<QString> text(const QString& key) const override;
    std::optional<QByteArray> data(const QString& key) const override;
    std::optional<QList<QByteArray>> dataList(const QString& key) const override;

    void setBoolean(const QString& key, bool value) override;
    void setNumber(const QString& key, double value) override;
    void setText(const QString& key, const QString& value) override;
    void setData(const QString& key, const QByteArray& value) override;
    void setDataList(const QString& key, const QList<QByteArray>& value) override;

 private:
    /// A line as it stands in the file. One that cannot be read has no value, and no key if even that is unclear.
    struct Line {
        QString key;
        QVariant value;
        QByteArray bytes;
    };
    class Writer;

    static Line parse(const QByteArray& bytes);
    QVariant find(const QString& key, int type) const;
    void set(const QString& key, const QVariant& value, const QByteArray& typeAndValue);

    std::vector<Line> lines_;
    Line cutLine_;  // the last line as it was found without its end: it stays last, and stays without
    std::shared_ptr<Writer> writer_;
    SerialQueue& queue_;
};
