#pragma once

#include <QByteArray>
#include <QUrl>
#include <functional>
#include <optional>

/// Fetches what is public. Main thread only.
class Http {
 public:
    static constexpr qint64 kMaxBytes = 8 << 20;

    virtual ~Http() = default;

    /// Fetches `url` (http or https) and calls `then` later with the body; absent after any failure: no network, an
    /// untrusted certificate, a status other than success, more than kMaxBytes, or no end after ten seconds. Follows
    /// redirects to https and to this machine only. Nothing is stored, and nothing about the user is sent.
    virtual void get(const QUrl& url, std::function<void(std::optional<QByteArray>)> then) = 0;
};
