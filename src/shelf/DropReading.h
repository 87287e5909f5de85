#pragma once

#include <QList>
#include <QString>
#include <QUrl>
#include <functional>
#include <memory>

#include "creature/Bite.h"
#include "platform/BackgroundJobs.h"
#include "platform/Drop.h"
#include "shelf/Inbox.h"
#include "shelf/UrlList.h"

/// Reads one drop: asks for its forms in order of preference until one of them gives something. Stays alive while an
/// answer is pending. Main thread only.
///
/// Files come first, then files that the source writes for us, an image, a link, and text: an image from a browser
/// becomes a file, not a link to it.
///
/// A source that reports a promised file as written cannot be relied on: some start writing only then, some when the
/// drop is over. So if the file is not there after a second, the drop is read in its other forms and released, and
/// their contents are used only if no file ever appears.
class DropReading : public std::enable_shared_from_this<DropReading> {
 public:
    using Done = std::function<void(const QList<QUrl>& files, const QList<Bite>& bites)>;

    /// `done` is called once, later; with empty lists if nothing could be read. Data are written into `folder`, on
    /// `disk`, under the name that `nameFor` returns for an extension. `loop` and `disk` must outlive the reading.
    static void start(std::shared_ptr<Drop> drop, const QUrl& folder, std::function<QString(const QString&)> nameFor,
                      MainLoop& loop, BackgroundQueue& disk, Done done);

 private:
    enum class Promise { none, open, written, refused };

    DropReading(std::shared_ptr<Drop> drop, QUrl folder, std::function<QString(const QString&)> nameFor, MainLoop& loop,
                BackgroundQueue& disk, Done done);

    void readUrls(int kind);
    void takeUrls(const UrlList& urls, int kind);
    void savePromise();
    void awaitPromise(bool prompt);
    void promiseAwaited(Inbox::Contents contents, bool prompt);
    void moveOut();
    void readPromisedBytes();
    void readImage(int kind);
    void readText();
    void formsRead();
    void writeImage();
    void finish(const QList<QUrl>& files, const QList<Bite>& bites);

    std::shared_ptr<Drop> drop_;
    QUrl folder_;
    std::function<QString(const QString&)> nameFor_;
    MainLoop& loop_;
    BackgroundJobs disk_;
    Done done_;

    Promise promise_ = Promise::none;
    QString promisedName_;
    std::shared_ptr<Inbox> inbox_;
    TimerHandle diskLimit_;
    // Read from the other forms: an image to write under `imageName_`, or bites.
    QString imageName_;
    QByteArray image_;
    QList<Bite> bites_;
};
