#include <gtest/gtest.h>

#include <QTcpServer>
#include <QTcpSocket>

#include "platform/linux/QtHttp.h"
#include "support/XSession.h"

using namespace Qt::StringLiterals;

namespace {

/// Answers every request on this machine with the bytes of its path, and what has none not at all.
class Server : public QTcpServer {
 public:
    Server() {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, [this] {
            QTcpSocket* client = nextPendingConnection();
            connect(client, &QTcpSocket::readyRead, client, [this, client] {
                const QByteArray request = client->readAll();
                requests.append(request);
                const QByteArray path = request.split(' ').value(1);
                if (!pages.contains(path)) return;
                client->write("HTTP/1.1 " + pages.value(path));
                client->disconnectFromHost();
            });
        });
    }
    QString address(const char* path) const {
        return u"http://127.0.0.1:%1%2"_s.arg(serverPort()).arg(QLatin1String(path));
    }
    QHash<QByteArray, QByteArray> pages;
    QByteArrayList requests;
};

TEST(Http, GivesWholeBodiesOfSuccessfulAnswersOnly) {
    Server server;
    QtHttp http("Glimmet/1.2.3");
    const QByteArray full((8 << 20), 'x');
    const auto body = [](const QByteArray& bytes) {
        return "200 OK\r\nContent-Length: " + QByteArray::number(bytes.size()) + "\r\n\r\n" + bytes;
    };
    const auto redirect = [](const QString& to) { return "302 Found\r\nLocation: " + to.toLatin1() + "\r\n\r\n"; };
    const struct {
        const char* path;
        QByteArray answer;
        std::optional<QByteArray> gets;
    } cases[] = {
        {"/ok", body("hello"), "hello"},
        {"/full", body(full), full},
        {"/over", body(full + 'x'), {}},
        {"/endless", "200 OK\r\n\r\n" + full + full, {}},
        {"/cut", "200 OK\r\nContent-Length: 99\r\n\r\nhello", {}},
        {"/none", "404 Not Found\r\nContent-Length: 1\r\n\r\nx", {}},
        {"/here", redirect(server.address("/ok")), "hello"},
        {"/long", "302 Found\r\nLocation: " + server.address("/ok").toLatin1() + "\r\n\r\n" + full + full, "hello"},
        {"/round", redirect(server.address("/round")), {}},
        {"/away", redirect(u"http://192.0.2.1/ok"_s), {}},
        {"/file", redirect(u"file:///etc/passwd"_s), {}},
        {"/packed", "200 OK\r\nContent-Encoding: gzip\r\nContent-Length: 5\r\n\r\nhello", "hello"},
        {"/garbage", "hello", {}},
    };
    for (const auto& [path, answer, gets] : cases) server.pages.insert(path, answer);
    for (const auto& [path, answer, gets] : cases) {
        std::optional<std::optional<QByteArray>> got;
        http.get(QUrl(server.address(path)), [&](auto bytes) { got = std::move(bytes); });
        EXPECT_FALSE(got) << "not before it returns";
        EXPECT_TRUE(waitFor([&] { return got.has_value(); }, 9)) << path;
        EXPECT_EQ(got.value_or(std::nullopt), gets) << path;
    }
    for (const char* header : {"User-Agent: Glimmet/1.2.3\r\n", "Accept-Language: *\r\n"})
        EXPECT_TRUE(server.requests.first().contains(header)) << header;
    for (const char* address : {"", "file:///etc/passwd", "ftp://127.0.0.1/", "http:///", "http://127.0.0.1:1/"}) {
        bool failed = false;
        http.get(QUrl(QLatin1String(address)), [&](const auto& bytes) { failed = !bytes; });
        EXPECT_TRUE(waitFor([&] { return failed; })) << address;
    }
}

TEST(Http, GivesUpOnASilentServer) {
    Server server;
    QtHttp http("Glimmet");
    bool failed = false;
    http.get(QUrl(server.address("/silent")), [&](const auto& bytes) { failed = !bytes; });
    ASSERT_TRUE(waitFor([&] { return !server.requests.isEmpty(); }));
    EXPECT_TRUE(waitFor([&] { return failed; }, 15));
}

}  // namespace
