#pragma once

#include <QHash>
#include <QSet>
#include <QStringList>

#include "platform/Http.h"
#include "platform/MediaKeys.h"
#include "platform/Players.h"

/// Players and browsers as the test sets them. A track or tabs that are absent are an error; tabs are told when the
/// test lets them.
class MemoryPlayers : public Players {
 public:
    void watch(bool on) override { watching = on; }
    bool isRunning(const QString& application) const override { return running.contains(application); }
    std::optional<Track> track(const QString& player) const override {
        asked.append(player);
        return tracks.value(player);
    }
    void tabs(const QString& browser, std::function<void(std::optional<QList<Track>>)> then) override {
        asked.append(browser);
        waiting.append([=, this] { then(open.value(browser)); });
    }
    std::optional<Track> paused(const QString& application) const override { return resumable.value(application); }
    void run(const QString& player, Verb verb) override {
        static constexpr const char* kVerbs[] = {" playpause", " next track", " previous track"};
        told.append(player + QLatin1String(kVerbs[int(verb)]));
    }
    void seek(const QString& player, double seconds) override {
        told.append(player + QStringLiteral(" seek %1").arg(seconds));
    }
    void answer() {
        while (!waiting.isEmpty()) waiting.takeFirst()();
    }

    bool watching = false;
    QSet<QString> running;
    QHash<QString, std::optional<Track>> tracks, resumable;
    QHash<QString, std::optional<QList<Track>>> open;
    mutable QStringList asked;
    QStringList told;
    QList<std::function<void()>> waiting;
};

class MemoryKeys : public MediaKeys {
 public:
    bool isTrusted(const QString&) const override { return trusted; }
    void press(const QString& browser, Key key) override { pressed.append({browser, key}); }
    bool trusted = true;
    QList<std::pair<QString, Key>> pressed;
};

/// Answers with what is in `pages`, when the test lets it.
class MemoryHttp : public Http {
 public:
    void get(const QUrl& url, std::function<void(std::optional<QByteArray>)> then) override {
        requests.append(url.toString(QUrl::FullyEncoded));
        const auto page = pages.find(requests.last());
        waiting.append([then, body = page == pages.end() ? std::nullopt : std::optional(*page)] { then(body); });
    }
    void answer() {
        while (!waiting.isEmpty()) waiting.takeFirst()();
    }
    QHash<QString, QByteArray> pages;
    QStringList requests;
    QList<std::function<void()>> waiting;
};
