#include "music/Artwork.h"

#include "music/CatalogueSearch.h"
#include "platform/DataUrl.h"
#include "platform/FileUrls.h"
#include "platform/Thumbnail.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int kSide = 96;                    // pixels: enough for 22 points at any ratio
constexpr qsizetype kMaxEntries = 60;        // when one more comes
constexpr qsizetype kMaxAnswer = 256 << 10;  // bytes
const QString kSearchHost = u"https://itunes.apple.com"_s;

std::optional<QByteArray> contentsOf(const QByteArray& path) {
    const Descriptor file = openRegularFile(path);
    struct stat status = {};
    if (!file || ::fstat(file.get(), &status) != 0 || status.st_size > Worker::kMaxBytes) return {};
    return readUpTo(file.get(), status.st_size);
}

QString keyOf(const Artwork::Request& request) {
    return request.source + u'|' + request.track;
}

}  // namespace

struct Artwork::Search {
    QList<QUrl> covers;  // those that are left
    Completion found;
};

Artwork::Artwork(MainLoop& loop, Http& http, Preferences& preferences, Worker& worker, BackgroundQueue& queue)
    : loop_(loop), http_(http), preferences_(preferences), worker_(worker), jobs_(queue, loop) {}

const Artwork::Entry* Artwork::cached(const Request& request) const {
    const auto known = artworkCache_.constFind(keyOf(request));
    if (known == artworkCache_.constEnd()) return nullptr;
    // Another cover than the source told before is worth a look, whatever came of that one.
    return request.cover.isEmpty() || known->cover == qHash(request.cover) ? &*known : nullptr;
}

void Artwork::lookUpArtwork(const Request& request, Completion completion) {
    if (const Entry* known = cached(request))
        return loop_.post([completion = std::move(completion), image = known->image] { completion(image); });
    fetchArtwork(request, lifetime_.guard([=, this](const std::optional<QImage>& image) {
        store(keyOf(request), {qHash(request.cover), image});
        completion(image);
    }));
}

void Artwork::store(const QString& key, const Entry& entry) {
    const auto known = artworkCache_.constFind(key);
    if (!entry.image && known != artworkCache_.constEnd() && known->image) return;
    if (artworkCache_.size() > kMaxEntries) artworkCache_.clear();
    artworkCache_.insert(key, entry);
}

void Artwork::fetchArtwork(const Request& request, const Completion& found) {
    const auto instead = [=, this] {
        if (request.isBrowser) return searchArtwork(request.track, found);
        loop_.post([found] { found({}); });
    };
    if (request.cover.isEmpty()) return instead();
    load(request.cover, [=, this](const std::optional<QByteArray>& bytes) {
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

void Artwork::decode(const QByteArray& bytes, const Completion& found) {
    jobs_.run(
        [&worker = worker_, bytes] {
            return thumbnailIn(worker.run({u"thumbnail"_s, QString::number(kSide)}, bytes), kSide);
        },
        found);
}

void Artwork::searchArtwork(const QString& track, const Completion& found) {
    const QString host = preferences_.text(u"glimmet.endpoints.musicSearch"_s).value_or(kSearchHost);
    const QString term = searchTerm(track);
    const auto read = [=, this](const std::optional<QByteArray>& answer) {
        const bool isUsable = answer && answer->size() <= kMaxAnswer;
        tryResult(std::make_shared<Search>(Search{isUsable ? coversIn(*answer, term) : QList<QUrl>(), found}));
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
