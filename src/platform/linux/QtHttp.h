#pragma once

#include <QDeadlineTimer>
#include <QNetworkReply>
#include <memory>

#include "platform/Http.h"

class QNetworkAccessManager;

/// Qt's HTTP client, made at the first request.
class QtHttp : public Http {
 public:
    /// `userAgent` names the program and its version.
    explicit QtHttp(QByteArray userAgent);
    ~QtHttp() override;

    void get(const QUrl& url, std::function<void(std::optional<QByteArray>)> then) override;

 private:
    using Then = std::function<void(std::optional<QByteArray>)>;

    /// `time` is what is left of it, `redirects` how many more may be followed.
    void fetch(const QUrl& url, QDeadlineTimer time, int redirects, Then then);

    QByteArray userAgent_;
    std::unique_ptr<QNetworkAccessManager> network_;
};
