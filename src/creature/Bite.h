#pragma once

#include <QString>
#include <QUrl>
#include <variant>

/// A held link (a URL) or a held note (plain text).
class Bite {
 public:
    static Bite link(const QUrl& url) { return Bite(url); }
    static Bite note(const QString& text) { return Bite(text); }

    /// The held URL, or null for a note. Owned by the bite.
    const QUrl* url() const { return std::get_if<QUrl>(&payload_); }
    /// The held text, or null for a link. Owned by the bite.
    const QString* text() const { return std::get_if<QString>(&payload_); }

    friend bool operator==(const Bite&, const Bite&) = default;

 private:
    explicit Bite(QUrl url) : payload_(std::move(url)) {}
    explicit Bite(QString text) : payload_(std::move(text)) {}

    std::variant<QUrl, QString> payload_;
};

/// Identity of a bite: two with the same key are the same bite.
inline QString biteKey(const Bite& bite) {
    if (bite.url()) return QStringLiteral("l:") + QString::fromUtf8(bite.url()->toEncoded());
    return QStringLiteral("n:") + *bite.text();
}
