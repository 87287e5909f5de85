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

/// The reading of one drop: asks for its forms in the order of preference until one of them gives something. Lives as
/// long as an answer is out. Main thread only.
///
/// Files come first, then files that the source writes for us, an image, a link, and text. So an image out of a
/// browser becomes a file, not a link to it.
///
/// A source's word that it has written says little: some begin only afterwards, some when the drop is over. So a drop
/// whose promise has not come true after a second is read in its other forms and let go, and what they gave is kept for
/// the case that no file ever comes.
class DropReading : public std::enable_shared_from_this<DropReading> {
 public:
    using Done = std::function<void(const QList<QUrl>& files, const QList<Bite>& bites)>;

    /// `done` is called once, later; with nothing if nothing could be read. Data are written into `folder`, on `disk`,
    /// under the name that `nameFor` gives to an extension. `loop` and `disk` must outlive the reading.
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
    void bringOut();
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
    // What the other forms gave: an image to be written under a name, or bites.
    QString imageName_;
    QByteArray image_;
    QList<Bite> bites_;
};
