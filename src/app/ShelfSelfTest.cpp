#include "app/ShelfSelfTest.h"

#include <QFileInfo>

#include "app/Diagnostics.h"
#include "platform/FileUrls.h"
#include "shelf/DropIntake.h"
#include "shelf/Shelf.h"

namespace {

/// A drop of files without a source program.
class DropOfFiles : public Drop {
 public:
    DropOfFiles(MainLoop& loop, const QList<QUrl>& files) : loop_(loop) {
        for (const QUrl& file : files) list_ += file.toEncoded() + "\r\n";
    }
    QStringList types() const override { return {QStringLiteral("text/uri-list")}; }
    void load(const QString&, std::function<void(std::optional<QByteArray>)> done) override {
        loop_.post([done = std::move(done), list = list_] { done(list); });
    }
    std::optional<QByteArray> promisedName() const override { return {}; }
    void savePromise(const QUrl&, std::function<void(bool)> done) override {
        loop_.post([done = std::move(done)] { done(false); });
    }
    void declinePromise() override {}

 private:
    MainLoop& loop_;
    QByteArray list_;
};

QUrl fileAt(const QString& path) {
    return QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath());
}

}  // namespace

ShelfSelfTest::ShelfSelfTest(const NotchModel& model, Shelf& shelf, MainLoop& loop, DropIntake& drops)
    : model_(model), shelf_(shelf), loop_(loop), drops_(drops) {}

void ShelfSelfTest::startDrop(const QString& paths) {
    const QStringList named = paths.split(u',', Qt::SkipEmptyParts);
    QList<QUrl> files;
    for (const QString& path : named) {
        if (QFileInfo::exists(path)) files.append(fileAt(path));
    }
    Diagnostics::write(QStringLiteral("droptest: %1 paths → %2 providers").arg(named.size()).arg(files.size()));
    drop_ = loop_.after(1, [this, files] {
        drops_.handleDrop(std::make_shared<DropOfFiles>(loop_, files));
        drop_ = loop_.after(2.5, [this] { reportDrop(); });
    });
}

void ShelfSelfTest::reportDrop() {
    Diagnostics::write(QStringLiteral("droptest: shelf now [%1]").arg(heldNames()));
}

void ShelfSelfTest::startChew(const QString& request) {
    const qsizetype comma = request.indexOf(u',');
    QStringList parts{comma < 0 ? request : request.left(comma)};
    if (comma >= 0) parts += request.mid(comma + 1);  // a kind with further commas is simply unknown
    parts.removeAll(QString());
    if (parts.isEmpty()) return;
    const QUrl file = fileAt(parts[0]);
    const QString kind = parts.value(1, QStringLiteral("jpeg"));
    shelf_.replaceItems({file});
    chew_ = loop_.after(1, [this, file, kind] {
        chew(file, kind);
        chew_ = loop_.after(3, [this] { reportChew(); });
    });
}

void ShelfSelfTest::chew(const QUrl& file, const QString& kind) {
    if (kind == QLatin1String("read"))
        shelf_.readText(file);
    else if (kind == QLatin1String("jpeg"))
        shelf_.chew(file, Chewer::Mode::toJPEG);
    else if (kind == QLatin1String("png"))
        shelf_.chew(file, Chewer::Mode::toPNG);
    else if (kind == QLatin1String("smaller"))
        shelf_.chew(file, Chewer::Mode::smaller);
}

void ShelfSelfTest::reportChew() {
    Diagnostics::write(QStringLiteral("chewtest: held=[%1] notes=%2").arg(heldNames()).arg(model_.bites->size()));
}

QString ShelfSelfTest::heldNames() const {
    QStringList names;
    for (const QUrl& file : model_.items.get()) names.append(file.adjusted(QUrl::StripTrailingSlash).fileName());
    return names.join(QStringLiteral(", "));
}
