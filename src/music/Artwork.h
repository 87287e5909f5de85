#pragma once

#include <QHash>
#include <QImage>
#include <QString>
#include <QUrl>
#include <functional>
#include <memory>
#include <optional>

#include "platform/BackgroundJobs.h"
#include "platform/Http.h"
#include "platform/MainLoop.h"
#include "platform/Preferences.h"
#include "platform/Worker.h"

/// Finds the covers of tracks: the player's own, or for a browser's track also that of a public catalogue. Main thread
/// only; the references must outlive it, and `loop` and `worker` the queue.
class Artwork {
 public:
    struct Request {
        QString track, source;
        bool isBrowser = false;
        QUrl cover = {};  ///< where the source says that it is; empty if it says nothing
    };
    using Completion = std::function<void(const std::optional<QImage>&)>;

    /// `queue` reads covers from the disk and waits for the worker.
    Artwork(MainLoop& loop, Http& http, Preferences& preferences, Worker& worker, BackgroundQueue& queue);

    /// Calls `completion` later, once, with the cover, at most 96 pixels each way; absent if there is none. Answers are
    /// cached, also those without a cover.
    void lookUpArtwork(const Request& request, Completion completion);
    /// Whether the answer is cached.
    bool isKnown(const Request& request) const { return cached(request) != nullptr; }

 private:
    struct Entry {
        size_t cover;  // the hash of its address
        std::optional<QImage> image;
    };
    struct Search;
    using Loaded = std::function<void(const std::optional<QByteArray>&)>;

    const Entry* cached(const Request& request) const;
    void fetchArtwork(const Request& request, const Completion& found);
    void searchArtwork(const QString& track, const Completion& found);
    void tryResult(const std::shared_ptr<Search>& search);
    void load(const QUrl& cover, const Loaded& loaded);
    void decode(const QByteArray& bytes, const Completion& found);
    void store(const QString& key, const Entry& entry);

    MainLoop& loop_;
    Http& http_;
    Preferences& preferences_;
    Worker& worker_;
    BackgroundJobs jobs_;
    QHash<QString, Entry> artworkCache_;
    Lifetime lifetime_;
};
