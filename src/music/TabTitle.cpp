#include "music/TabTitle.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QString soundCloudTails[] = {u" | Free Listening on SoundCloud"_s, u" | Listen online for free on SoundCloud"_s};
const QString musicSites[] = {u"YouTube Music"_s, u"Spotify"_s, u"SoundCloud"_s, u"Apple Music"_s,
                              u"Deezer"_s,        u"TIDAL"_s,   u"Bandcamp"_s,   u"Qobuz"_s};
const QString titleSeparators[] = {u" | "_s, u" - "_s, u" – "_s, u" — "_s, u" · "_s, u" • "_s};

QString trimmedBlanks(const QString& text) {
    const auto isBlank = [](QChar c) { return c == u'\t' || c.category() == QChar::Separator_Space; };
    const auto from = std::find_if_not(text.begin(), text.end(), isBlank);
    const auto to = std::find_if_not(text.rbegin(), std::make_reverse_iterator(from), isBlank).base();
    return QString(from, to - from);
}

std::optional<QString> unlessEmpty(const QString& text) {
    const QString trimmed = trimmedBlanks(text);
    return trimmed.isEmpty() ? std::nullopt : std::optional(trimmed);
}

}  // namespace

std::optional<QString> trackInTabTitle(const QString& title) {
    const QString line = trimmedBlanks(title);
    for (const QString& tail : soundCloudTails) {
        if (const qsizetype at = line.indexOf(tail); at >= 0) return unlessEmpty(line.left(at));
    }
    for (const QString& site : musicSites) {
        for (const QString& separator : titleSeparators) {
            if (line.endsWith(separator + site)) return unlessEmpty(line.chopped(separator.size() + site.size()));
        }
    }
    return {};
}
