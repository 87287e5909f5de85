#include "shelf/DropReading.h"

#include <algorithm>
#include <array>

#include "platform/BackgroundQueue.h"
#include "shelf/NewFile.h"
#include "shelf/NoteText.h"
#include "shelf/UrlList.h"

namespace {

struct ImageKind {
    QString type, extension;
};

const std::array<ImageKind, 4> kImageDropTypes{{{QStringLiteral("image/png"), QStringLiteral("png")},
                                                {QStringLiteral("image/jpeg"), QStringLiteral("jpg")},
                                                {QStringLiteral("image/tiff"), QStringLiteral("tiff")},
                                                {QStringLiteral("image/heic"), QStringLiteral("heic")}}};
const QStringList kUrlTypes{QStringLiteral("text/uri-list"), QStringLiteral("text/x-moz-url"),
                            QStringLiteral("_NETSCAPE_URL")};
// Far more than a note can hold; the rest of a long text is not looked at.
constexpr qsizetype kMostTextBytes = 1 << 20;
const QString kText = QStringLiteral("text/plain;charset=utf-8");

}  // namespace

void DropReading::start(std::shared_ptr<Drop> drop, const QUrl& folder, std::function<QString(const QString&)> nameFor,
                        MainLoop& loop, BackgroundQueue& disk, Done done) {
    const std::shared_ptr<DropReading> reading(
        new DropReading(std::move(drop), folder, std::move(nameFor), loop, disk, std::move(done)));
    reading->readUrls();
}

DropReading::DropReading(std::shared_ptr<Drop> drop, QUrl folder, std::function<QString(const QString&)> nameFor,
                         MainLoop& loop, BackgroundQueue& disk, Done done)
    : drop_(std::move(drop)),
      folder_(std::move(folder)),
      nameFor_(std::move(nameFor)),
      loop_(loop),
      disk_(disk),
      done_(std::move(done)) {}

void DropReading::readUrls() {
    const QStringList offered = drop_->types();
    for (const QString& type : kUrlTypes) {
        if (!offered.contains(type)) continue;
        drop_->load(type, [self = shared_from_this(), type](const std::optional<QByteArray>& bytes) {
            QList<QUrl> files;
            for (const QUrl& url : parseUrls(type, bytes.value_or(QByteArray()))) {
                if (url.isLocalFile() && url.host().isEmpty())
                    files.append(url);
                else
                    self->links_.append(Bite::link(url));
            }
            if (files.isEmpty())
                self->savePromise();
            else
                self->finish(files, self->links_);
        });
        return;
    }
    savePromise();
}

// The source writes into a folder of its own, so that it can neither replace a file nor leave half of one in sight.
void DropReading::savePromise() {
    const auto promised = drop_->promisedName();
    if (!promised) return readImage(0);
    const QString name = sanitizedFileName(*promised);
    onDisk([folder = folder_] { return makeInbox(folder); },
           [self = shared_from_this(), name](const std::optional<QUrl>& inbox) {
               if (!inbox) return self->readImage(0);
               const QUrl target = inbox->resolved(QUrl::fromLocalFile(inbox->toLocalFile() + name));
               self->drop_->savePromise(
                   target, [self, inbox, name](bool saved) { self->promiseSaved(*inbox, saved ? name : QString()); });
           });
}

void DropReading::promiseSaved(const QUrl& inbox, const QString& name) {
    onDisk([folder = folder_, inbox, name] { return emptyInbox(inbox, name, folder); },
           [self = shared_from_this()](const std::optional<QUrl>& file) {
               if (file)
                   self->finish({*file}, {});
               else
                   self->readImage(0);
           });
}

void DropReading::readImage(int kind) {
    const QStringList offered = drop_->types();
    while (kind < int(kImageDropTypes.size()) && !offered.contains(kImageDropTypes[kind].type)) ++kind;
    if (kind == int(kImageDropTypes.size())) return takeLinks();
    drop_->load(kImageDropTypes[kind].type, [self = shared_from_this(), kind](const std::optional<QByteArray>& bytes) {
        if (!bytes || bytes->isEmpty()) return self->readImage(kind + 1);
        const QString name = self->nameFor_(kImageDropTypes[kind].extension);
        self->onDisk([folder = self->folder_, name, bytes] { return writeNewFile(folder, name, *bytes); },
                     [self](const std::optional<QUrl>& file) {
                         if (file)
                             self->finish({*file}, {});
                         else
                             self->takeLinks();
                     });
    });
}

void DropReading::takeLinks() {
    if (links_.isEmpty())
        readText();
    else
        finish({}, links_);
}

void DropReading::readText() {
    if (!drop_->types().contains(kText)) return finish({}, {});
    drop_->load(kText, [self = shared_from_this()](const std::optional<QByteArray>& bytes) {
        const QByteArray whole = bytes.value_or(QByteArray());
        const auto blank = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
        const auto start = std::find_if_not(whole.begin(), whole.end(), blank) - whole.begin();
        const QString text = firstCharacters(QString::fromUtf8(whole.mid(start, kMostTextBytes)).trimmed());
        self->finish({}, text.isEmpty() ? QList<Bite>() : QList{Bite::note(text)});
    });
}

void DropReading::finish(const QList<QUrl>& files, const QList<Bite>& bites) {
    drop_.reset();
    loop_.post([done = done_, files, bites] { done(files, bites); });
}

void DropReading::onDisk(std::function<std::optional<QUrl>()> job,
                         std::function<void(const std::optional<QUrl>&)> then) {
    disk_.run([&loop = loop_, job = std::move(job), then = std::move(then)]() mutable {
        // Posted together with what it holds, so that the drop is let go on the main thread.
        loop.post([made = job(), then = std::move(then)] { then(made); });
    });
}
