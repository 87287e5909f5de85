#include "music/Artwork.h"

#include "music/CatalogueSearch.h"
#include "platform/DataUrl.h"
#include "platform/FileUrls.h"
#include "platform/Thumbnail.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int kSide = 96;              // pixels: enough for 22 points at any ratio
constexpr qsizetype kMaxEntries = 60;  // when one more comes
const QString kSearchHost = u"https://itunes.apple.com"_s;

std::optional<QByteArray> contentsOf(const QByteArray& path) {
    const Descriptor file = openRegularFile(path);
    struct stat status = {};
    if (!file || ::fstat(file.get(), &status) != 0 || status.st_size > Worker::kMaxBytes) return {};
    return readUpTo(file.get(), status.st_size);
}

}  // namespace

struct Artwork::Search {
    QList<QUrl> covers;  // those that are left
    Found found;
};

Artwork::Artwork(MainLoop& loop, Players& players, Http& http, Preferences& preferences, Worker& worker,
                 BackgroundQueue& queue)
    : loop_(loop), players_(players), http_(http), preferences_(preferences), worker_(worker), jobs_(queue, loop) {}

void Artwork::lookUpArtwork(const QString& track, const QString& source, bool isBrowser, Completion completion) {
    const QString key = source + u'|' + track;
    const QUrl cover = players_.cover(source);
    const auto known = artworkCache_.constFind(key);
    // That there was none counts until the player tells of one.
    if (known != artworkCache_.constEnd() && (known->image || known->cover == cover))
        return loop_.post([completion = std::move(completion), image = known->image] { completion(image); });
    fetchArtwork(cover, track, isBrowser, lifetime_.guard([=, this](const std::optional<QImage>& image) {
        store(key, {cover, image});
        completion(image);
    }));
}

void Artwork::store(const QString& key, const Entry& entry) {
    if (artworkCache_.size() > kMaxEntries) artworkCache_.clear();
    artworkCache_.insert(key, entry);
}

void Artwork::fetchArtwork(const QUrl& cover, const QString& track, bool isBrowser, const Found& found) {
    const auto instead = [=, this] {
        if (isBrowser) return searchArtwork(track, found);
        loop_.post([found] { found({}); });
    };
    if (cover.isEmpty()) return instead();
    load(cover, [=, this](const std::optional<QByteArray>& bytes) {
        if (!bytes) return instead();
        decode(*bytes, [=](const std::optional<QImage>& image) { image ? found(image) : instead(); });
    });
}

void Artwork::load(const QUrl& cover, const Loaded& loaded) {
    const QString scheme = cover.scheme();
    if (scheme == u"http" || scheme == u"https") return http_.get(cover, lifetime_.guard(loaded));
    jobs_.run(
        [cover]() -> std::optional<QByteArray> {
            if (cover.isLocalFile()) return contentsOf(pathOf(cover));
            if (const auto image = imageInDataUrl(cover.toEncoded())) return image->bytes;
            return {};
        },
        loaded);
}

void Artwork::decode(const QByteArray& bytes, const Found& found) {
    jobs_.run(
        [&worker = worker_, bytes] {
            return thumbnailIn(worker.run({u"thumbnail"_s, QString::number(kSide)}, bytes), kSide);
        },
        found);
}

void Artwork::searchArtwork(const QString& track, const Found& found) {
    const QString host = preferences_.text(u"glimmet.endpoints.musicSearch"_s).value_or(kSearchHost);
    const QString term = searchTerm(track);
    const auto read = [=, this](const std::optional<QByteArray>& answer) {
        tryResult(std::make_shared<Search>(Search{answer ? coversIn(*answer, term) : QList<QUrl>(), found}));
    };
    http_.get(searchRequest(host, term), lifetime_.guard(read));
}

// The first cover that can be downloaded counts, even if it is not a picture.
void Artwork::tryResult(const std::shared_ptr<Search>& search) {
    if (search->covers.isEmpty()) return search->found({});
    http_.get(search->covers.takeFirst(), lifetime_.guard([=, this](const std::optional<QByteArray>& bytes) {
        bytes ? decode(*bytes, search->found) : tryResult(search);
    }));
}
