#include "shelf/DropReading.h"

#include <algorithm>
#include <utility>

#include "platform/DropTypes.h"
#include "shelf/NewFile.h"
#include "shelf/NoteText.h"

namespace {

constexpr double kTimeout = 10;  // seconds without growth, after which a promise counts as broken
// Forms up to this many bytes parse in less than a millisecond on the main thread, so most drops do not depend on the
// disk queue, which a hung disk may block.
constexpr qsizetype kMaxInline = 32 << 10;

/// The text of a note; empty for blank text and for an image's data: URL.
QString noteText(const QByteArray& bytes) {
    const auto blank = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
    const QByteArray text = bytes.mid(std::find_if_not(bytes.begin(), bytes.end(), blank) - bytes.begin());
    return imageInDataUrl(text) ? QString() : firstCharacters(QString::fromUtf8(text).trimmed());
}

}  // namespace

void DropReading::start(std::shared_ptr<Drop> drop, const QUrl& folder, std::function<QString(const QString&)> nameFor,
                        MainLoop& loop, BackgroundQueue& disk, Done done) {
    const std::shared_ptr<DropReading> reading(
        new DropReading(std::move(drop), folder, std::move(nameFor), loop, disk, std::move(done)));
    reading->readUrls(0);
}

DropReading::DropReading(std::shared_ptr<Drop> drop, QUrl folder, std::function<QString(const QString&)> nameFor,
                         MainLoop& loop, BackgroundQueue& disk, Done done)
    : drop_(std::move(drop)),
      folder_(std::move(folder)),
      nameFor_(std::move(nameFor)),
      loop_(loop),
      disk_(disk, loop),
      done_(std::move(done)) {}

void DropReading::readUrls(int kind) {
    const QStringList offered = drop_->types();
    while (kind < int(DropTypes::kAddresses.size()) && !offered.contains(DropTypes::kAddresses[kind])) ++kind;
    if (kind == int(DropTypes::kAddresses.size())) return savePromise();
    drop_->load(DropTypes::kAddresses[kind], [self = shared_from_this(), kind](const std::optional<QByteArray>& bytes) {
        if (!bytes) return self->readUrls(kind + 1);
        if (bytes->size() <= kMaxInline) return self->takeUrls(parseUrls(DropTypes::kAddresses[kind], *bytes), kind);
        self->disk_.run([bytes = *bytes, kind] { return parseUrls(DropTypes::kAddresses[kind], bytes); },
                        [self, kind](const UrlList& urls) { self->takeUrls(urls, kind); });
    });
}

void DropReading::takeUrls(const UrlList& urls, int kind) {
    if (urls.isEmpty()) return readUrls(kind + 1);
    for (const QUrl& link : urls.links) bites_.append(Bite::link(link));
    if (!urls.files.isEmpty()) return finish(urls.files, bites_);
    if (urls.image) {
        imageName_ = nameFor_(urls.image->extension);
        image_ = urls.image->bytes;
    }
    savePromise();
}

void DropReading::savePromise() {
    const auto name = drop_->promisedName();
    if (!name) return readImage(0);
    promisedName_ = sanitizedFileName(*name);
    promise_ = Promise::open;
    const auto without = [](DropReading& self) {
        self.promise_ = Promise::refused;
        self.readPromisedBytes();
    };
    // No shared_from_this() here: the timer is a member, so it would keep the reading alive.
    diskLimit_ = loop_.after(kTimeout, [self = this, without] { without(*self); });
    disk_.run([folder = folder_] { return Inbox::make(folder); },
              [self = shared_from_this(), without](const std::shared_ptr<Inbox>& inbox) {
                  if (self->promise_ == Promise::refused) return;  // too late
                  self->diskLimit_.cancel();
                  if (!inbox) return without(*self);
                  self->inbox_ = inbox;
                  self->drop_->savePromise(inbox->place(self->promisedName_), [self, inbox](bool saved) {
                      self->promise_ = saved ? Promise::written : Promise::refused;
                      inbox->setReply(saved ? Inbox::Reply::written : Inbox::Reply::refused);
                  });
                  self->awaitPromise(true);
              });
}

void DropReading::awaitPromise(bool prompt) {
    disk_.run(
        [inbox = inbox_, prompt] { return inbox->await(kTimeout, prompt); },
        [self = shared_from_this(), prompt](Inbox::Contents contents) { self->promiseAwaited(contents, prompt); });
}

void DropReading::promiseAwaited(Inbox::Contents contents, bool prompt) {
    if (contents == Inbox::Contents::things) return moveOut();
    if (prompt) return readPromisedBytes();
    if (image_.isEmpty() && contents == Inbox::Contents::emptyFiles) return moveOut();
    disk_.run([inbox = inbox_] { return inbox->discard(); },
              [self = shared_from_this()](bool discarded) { discarded ? self->writeImage() : self->moveOut(); });
}

void DropReading::moveOut() {
    drop_.reset();
    disk_.run([inbox = inbox_, first = promisedName_] { return inbox->moveOut(first); },
              [self = shared_from_this()](const QList<QUrl>& files) {
                  if (files.isEmpty()) return self->writeImage();
                  self->finish(files, {});
              });
}

// The promised file's own bytes are better than an image form, which browsers re-encode.
void DropReading::readPromisedBytes() {
    if (!drop_->types().contains(DropTypes::kPromisedBytes)) {
        if (promise_ != Promise::written) drop_->declinePromise();
        return readImage(0);
    }
    drop_->load(DropTypes::kPromisedBytes, [self = shared_from_this()](const std::optional<QByteArray>& bytes) {
        if (bytes && !bytes->isEmpty()) {
            self->imageName_ = self->promisedName_;
            self->image_ = *bytes;
        } else if (self->promise_ != Promise::written) {
            self->drop_->declinePromise();
        }
        self->readImage(0);
    });
}

void DropReading::readImage(int kind) {
    const QStringList offered = drop_->types();
    while (kind < int(DropTypes::kImages.size()) && !offered.contains(DropTypes::kImages[kind].type)) ++kind;
    if (!image_.isEmpty() || kind == int(DropTypes::kImages.size())) return readText();
    drop_->load(DropTypes::kImages[kind].type,
                [self = shared_from_this(), kind](const std::optional<QByteArray>& bytes) {
                    if (!bytes || bytes->isEmpty()) return self->readImage(kind + 1);
                    self->imageName_ = self->nameFor_(DropTypes::kImages[kind].extension);
                    self->image_ = *bytes;
                    self->readText();
                });
}

void DropReading::readText() {
    if (!image_.isEmpty() || !bites_.isEmpty() || !drop_->types().contains(DropTypes::kText)) return formsRead();
    drop_->load(DropTypes::kText, [self = shared_from_this()](const std::optional<QByteArray>& bytes) {
        const auto take = [self](const QString& text) {
            if (!text.isEmpty()) self->bites_.append(Bite::note(text));
            self->formsRead();
        };
        const QByteArray whole = bytes.value_or(QByteArray());
        if (whole.size() <= kMaxInline) return take(noteText(whole));
        self->disk_.run([whole] { return noteText(whole); }, take);
    });
}

void DropReading::formsRead() {
    drop_.reset();
    if (promise_ == Promise::written) return awaitPromise(false);
    // Discards the inbox only if it is empty; what a source left there before refusing is picked up at the next start.
    if (inbox_) disk_.run([inbox = inbox_] { inbox->discard(); }, [] {});
    writeImage();
}

void DropReading::writeImage() {
    if (image_.isEmpty()) return finish({}, bites_);
    // Moved into the job, because freeing a large block of memory is slow.
    disk_.run([folder = folder_, name = imageName_,
               bytes = std::exchange(image_, {})] { return writeNewFile(folder, name, bytes); },
              [self = shared_from_this()](const std::optional<QUrl>& file) {
                  if (file)
                      self->finish({*file}, {});
                  else
                      self->finish({}, self->bites_);
              });
}

void DropReading::finish(const QList<QUrl>& files, const QList<Bite>& bites) {
    drop_.reset();
    loop_.post([done = done_, files, bites] { done(files, bites); });
}
