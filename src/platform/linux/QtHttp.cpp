#include "platform/linux/QtHttp.h"

#include <QHostAddress>
#include <QNetworkAccessManager>
#include <QNetworkRequest>
#include <QTimer>
#include <utility>

namespace {

constexpr int kTimeout = 10'000;  // milliseconds
constexpr int kMaxRedirects = 10;

bool isThisMachine(const QUrl& url) {
    return url.host() == QLatin1String("localhost") || QHostAddress(url.host()).isLoopback();
}

bool isSuccess(const QNetworkReply& reply) {
    return reply.error() == QNetworkReply::NoError &&
           reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() / 100 == 2;
}

QNetworkRequest requestFor(const QUrl& url, const QByteArray& userAgent) {
    QNetworkRequest request(url);
    request.setRawHeader("User-Agent", userAgent);
    // A packed answer might be larger than it looks.
    request.setRawHeader("Accept-Encoding", "identity");
    // Neither cookies nor passwords, nor anything on the disk.
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::UserVerifiedRedirectPolicy);
    request.setMaximumRedirectsAllowed(kMaxRedirects);
    return request;
}

}  // namespace

QtHttp::QtHttp(QByteArray userAgent) : userAgent_(std::move(userAgent)) {}
QtHttp::~QtHttp() = default;

void QtHttp::get(const QUrl& url, std::function<void(std::optional<QByteArray>)> then) {
    if (!network_) network_ = std::make_unique<QNetworkAccessManager>();
    const bool isWeb = url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    if (!isWeb || url.host().isEmpty()) {
        QTimer::singleShot(0, network_.get(), [then = std::move(then)] { then({}); });
        return;
    }
    QNetworkReply* reply = network_->get(requestFor(url, userAgent_));
    // A request as a whole may take that long, however many bytes it drips.
    QTimer::singleShot(kTimeout, reply, &QNetworkReply::abort);
    QObject::connect(reply, &QNetworkReply::redirected, reply, [reply](const QUrl& to) {
        if (to.scheme() == QLatin1String("https") || isThisMachine(to))
            Q_EMIT reply->redirectAllowed();
        else
            reply->abort();
    });
    QObject::connect(reply, &QNetworkReply::readyRead, reply, [reply] {
        if (reply->bytesAvailable() > kMaxBytes) reply->abort();
    });
    QObject::connect(reply, &QNetworkReply::finished, reply, [reply, then = std::move(then)] {
        reply->deleteLater();
        std::optional<QByteArray> body;
        if (isSuccess(*reply) && reply->bytesAvailable() <= kMaxBytes) body = reply->readAll();
        then(std::move(body));
    });
}
