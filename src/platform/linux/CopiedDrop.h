#pragma once

#include <QMap>
#include <QMimeData>

#include "platform/Drop.h"

/// A drop whose forms were all read when it happened. It has no promised file.
class CopiedDrop : public Drop {
 public:
    explicit CopiedDrop(const QMimeData& offered);
    /// Whether any of the forms on offer can be used.
    static bool hasUsableForm(const QMimeData& offered);

    QStringList types() const override { return types_; }
    void load(const QString& type, std::function<void(std::optional<QByteArray>)> done) override;
    std::optional<QByteArray> promisedName() const override { return {}; }
    void savePromise(const QUrl&, std::function<void(bool saved)> done) override { done(false); }
    void declinePromise() override {}

 private:
    QStringList types_;
    QMap<QString, QByteArray> forms_;
};
