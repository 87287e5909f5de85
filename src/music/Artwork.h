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
#include "platform/Players.h"
#include "platform/Preferences.h"
#include "platform/Worker.h"

/// Finds the covers of tracks: the player's own, or for a browser's track also that of a public catalogue. Main thread
/// only; the references must outlive it, and `queue` must be outlived by `loop` and `worker`.
class Artwork {
 public:
    using Completion = std::function<void(const std::optional<QImage>&)>;

    /// `queue` reads covers from the disk and waits for the worker.
    Artwork(MainLoop& loop, Players& players, Http& http, Preferences& preferences, Worker& worker,
            BackgroundQueue& queue);

    /// Calls `completion` later, once, with the cover of `track`, at most 96 pixels each way; absent if there is none.
    /// Answers are cached, also those without a cover.
    void lookUpArtwork(const QString& track, const QString& source, bool isBrowser, Completion completion);

 private:
    struct Entry {
        QUrl cover;  // the player's address for it at that time
        std::optional<QImage> image;
    };
    struct Search;
    using Found = std::function<void(const std::optional<QImage>&)>;
    using Loaded = std::function<void(const std::optional<QByteArray>&)>;

    void fetchArtwork(const QUrl& cover, const QString& track, bool isBrowser, const Found& found);
    void searchArtwork(const QString& track, const Found& found);
    void tryResult(const std::shared_ptr<Search>& search);
    void load(const QUrl& cover, const Loaded& loaded);
    void decode(const QByteArray& bytes, const Found& found);
    void store(const QString& key, const Entry& entry);

    MainLoop& loop_;
    Players& players_;
    Http& http_;
    Preferences& preferences_;
    Worker& worker_;
    BackgroundJobs jobs_;
    QHash<QString, Entry> artworkCache_;
    Lifetime lifetime_;
};
