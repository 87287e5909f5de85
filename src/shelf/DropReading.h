#pragma once

#include <QList>
#include <QString>
#include <QUrl>
#include <functional>
#include <memory>

#include "platform/Drop.h"
#include "platform/MainLoop.h"
#include "shelf/Bite.h"

class BackgroundQueue;

/// The reading of one drop: asks for its forms in the order of preference until one of them gives something. Lives as
/// long as an answer is out. Main thread only.
///
/// Files come first, then a file that the source writes for us, an image, a link, and text. So an image out of a
/// browser becomes a file, not a link to it.
class DropReading : public std::enable_shared_from_this<DropReading> {
 public:
    using Done = std::function<void(const QList<QUrl>& files, const QList<Bite>& bites)>;

    /// `done` is called once, later; with nothing if nothing could be read. Data are written into `folder`, on `disk`,
    /// under the name that `nameFor` gives to an extension. `loop` and `disk` must outlive the reading.
    static void start(std::shared_ptr<Drop> drop, const QUrl& folder, std::function<QString(const QString&)> nameFor,
                      MainLoop& loop, BackgroundQueue& disk, Done done);

 private:
    DropReading(std::shared_ptr<Drop> drop, QUrl folder, std::function<QString(const QString&)> nameFor, MainLoop& loop,
                BackgroundQueue& disk, Done done);

    void readUrls();
    void savePromise();
    void promiseSaved(const QUrl& inbox, const QString& name);
    void readImage(int kind);
    void takeLinks();
    void readText();
    void finish(const QList<QUrl>& files, const QList<Bite>& bites);
    /// Runs `job` away from the main thread and hands its result to `then` on it.
    void onDisk(std::function<std::optional<QUrl>()> job, std::function<void(const std::optional<QUrl>&)> then);

    std::shared_ptr<Drop> drop_;
    QUrl folder_;
    std::function<QString(const QString&)> nameFor_;
    MainLoop& loop_;
    BackgroundQueue& disk_;
    Done done_;
    QList<Bite> links_;
};
