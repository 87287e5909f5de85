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

bool mayFollow(const QUrl& url) {
    return !url.host().isEmpty() &&
           (url.scheme() == QLatin1String("https") || (url.scheme() == QLatin1String("http") && isThisMachine(url)));
}

int statusOf(const QNetworkReply& reply) {
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

bool isSuccess(const QNetworkReply& reply) {
    return reply.error() == QNetworkReply::NoError && statusOf(reply) / 100 == 2;
}

bool isRedirect(const QNetworkReply& reply) {
    return statusOf(reply) / 100 == 3;
}

QUrl redirectTarget(const QNetworkReply& reply) {
    const QUrl target = reply.header(QNetworkRequest::LocationHeader).toUrl();
    return target.isEmpty() ? QUrl() : reply.url().resolved(target);
}

QNetworkRequest requestFor(const QUrl& url, const QByteArray& userAgent) {
    QNetworkRequest request(url);
    request.setRawHeader("User-Agent", userAgent);
    request.setRawHeader("Accept-Language", "*");
    // A packed answer might be larger than it looks.
    request.setRawHeader("Accept-Encoding", "identity");
    // No cookies, no passwords, nothing on the disk.
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    return request;
}

}  // namespace

QtHttp::QtHttp(QByteArray userAgent) : userAgent_(std::move(userAgent)) {}
QtHttp::~QtHttp() = default;

void QtHttp::get(const QUrl& url, Then then) {
    if (!network_) network_ = std::make_unique<QNetworkAccessManager>();
    const bool isWeb = url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    if (isWeb && !url.host().isEmpty()) return fetch(url, QDeadlineTimer(kTimeout), kMaxRedirects, std::move(then));
    QTimer::singleShot(0, network_.get(), [then = std::move(then)] { then({}); });
}

void QtHttp::fetch(const QUrl& url, QDeadlineTimer time, int redirects, Then then) {
    QNetworkReply* reply = network_->get(requestFor(url, userAgent_));
    // For the request as a whole, however many bytes it drips.
    QTimer::singleShot(int(time.remainingTime()), reply, &QNetworkReply::abort);
    // Nobody needs the body of a redirect, which may be endless.
    QObject::connect(reply, &QNetworkReply::metaDataChanged, reply, [reply] {
        if (isRedirect(*reply)) reply->abort();
    });
    QObject::connect(reply, &QNetworkReply::readyRead, reply, [reply] {
        if (reply->bytesAvailable() > kMaxBytes) reply->abort();
    });
    QObject::connect(reply, &QNetworkReply::finished, network_.get(), [=, this, then = std::move(then)] {
        reply->deleteLater();
        const QUrl next = isRedirect(*reply) ? redirectTarget(*reply) : QUrl();
        if (redirects > 0 && mayFollow(next)) return fetch(next, time, redirects - 1, then);
        std::optional<QByteArray> body;
        if (isSuccess(*reply) && reply->bytesAvailable() <= kMaxBytes) body = reply->readAll();
        then(std::move(body));
    });
}
