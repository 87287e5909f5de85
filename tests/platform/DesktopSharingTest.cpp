#include <QDBusMetaType>
#include <filesystem>

#include "TestBus.h"
#include "TestPrograms.h"
#include "platform/FileUrls.h"
#include "platform/linux/QtMainLoop.h"
#include "platform/linux/ThreadQueues.h"
#include "platform/linux/freedesktop/DesktopSharing.h"
#include "support/ManualLoop.h"
#include "support/MemoryPorts.h"
#include "support/XSession.h"

namespace {

using Interfaces = QMap<QString, QVariantMap>;
using Objects = QMap<QDBusObjectPath, Interfaces>;

class MemoryPasteboard : public Pasteboard {
 public:
    void setString(const QString& string) override { text = string; }
    QString text;
};

QStringList titles(const QList<ShareOffer>& offers) {
    QStringList result;
    for (const ShareOffer& offer : offers) {
        EXPECT_NE(offer.choices.isEmpty(), !offer.choose) << offer.title.toStdString();
        result.append(offer.title);
        for (const ShareOffer& choice : offer.choices) result.append(u'>' + choice.title);
    }
    return result;
}

QString joined(const char* titles) {
    return QString::fromUtf8(titles);
}

/// A home with files and programs, on a desktop with no buses.
class SharingTest : public testing::Test {
 protected:
    SharingTest() {
        QDir(home.path()).mkpath(QStringLiteral("share/applications"));
        QDir(home.path()).mkpath(QStringLiteral("folder"));
        std::filesystem::create_symlink("/usr/share/mime", path("share/mime").toStdString());
        for (const QByteArray& file : {letter, odd, script}) write(file, "x");
        for (const char* program : {"editor", "viewer", "browser", "mailer", "snake", "xdg-open"})
            programs.install(program);
        entry("editor", "Name[de]=Schreiber\nName=Editor\nExec=editor %U\nMimeType=text/html;text/plain;");
        entry("viewer", "Name=Viewer\nExec=viewer --name %c --open=%f %i\nMimeType=text/plain;");
        entry("console", "Name=Console\nExec=viewer %f\nTerminal=true\nMimeType=text/plain;");
        entry("gone", "Name=Gone\nExec=gone %f\nMimeType=text/plain;");
        entry("half", "Name=Half\nExec=viewer %f\nTryExec=gone\nMimeType=text/plain;");
        entry("removed", "Name=Removed\nExec=viewer %f\nMimeType=text/plain;");
        entry("added", "Name=Added \\n and a name that is longer than any menu should be\nExec=viewer");
        entry("snake", "Name=Snake\nExec=snake %F\nMimeType=text/x-python;");
        entry("browser", "Name=Browser\nExec=browser %u\nMimeType=x-scheme-handler/https;");
        // As the desktop's own tool records them; the handlers of addresses are left out, as where nobody runs that
        // tool.
        write("share/applications/mimeinfo.cache",
              "[MIME Cache]\ntext/html=editor.desktop;\ntext/x-python=snake.desktop;\n"
              "text/plain=editor.desktop;viewer.desktop;console.desktop;gone.desktop;half.desktop;removed.desktop;\n");
        write("config/mimeapps.list",
              "[Default Applications]\ntext/plain=absent.desktop;viewer.desktop\n[Added Associations]\n"
              "text/plain=added.desktop;\n[Removed Associations]\ntext/plain=removed.desktop;\n");
    }
    // Qt cannot remove names that are not UTF-8.
    ~SharingTest() override {
        for (const auto& entry : std::filesystem::directory_iterator(home.path().toStdString()))
            std::filesystem::remove_all(entry.path());
    }

    QByteArray path(const QByteArray& name) const { return home.path().toUtf8() + '/' + name; }
    void write(const QByteArray& name, const QByteArray& text) const {
        std::filesystem::create_directories(std::filesystem::path(path(name).toStdString()).parent_path());
        const std::unique_ptr<FILE, int (*)(FILE*)> file(fopen(path(name).constData(), "w"), &fclose);
        ASSERT_TRUE(file && fwrite(text.constData(), 1, text.size(), file.get()) == size_t(text.size()));
    }
    void entry(const QByteArray& id, const QByteArray& lines) const {
        write("share/applications/" + id + ".desktop", "[Desktop Entry]\nType=Application\n" + lines + '\n');
    }
    void installMail() const { entry("mailer", "Name=Mailer\nExec=mailer %u\nMimeType=x-scheme-handler/mailto;"); }

    QList<ShareOffer> offersFor(const QUrl& thing) {
        std::optional<QList<ShareOffer>> result;
        sharing.offers(thing, [&](const QList<ShareOffer>& offers) {
            EXPECT_FALSE(result);
            result = offers;
        });
        EXPECT_FALSE(result) << "not at once";
        EXPECT_TRUE(waitFor([&] { return result.has_value(); }, 10));
        return result.value_or(QList<ShareOffer>());
    }
    QString titlesFor(const QUrl& thing) { return titles(offersFor(thing)).join(u'|'); }
    testing::AssertionResult tells(const QByteArray& program, const QByteArrayList& arguments) {
        auto result = waitFor([&] { return programs.told(program) == arguments; });
        return result ? result : (result << ": " << programs.told(program).join(' ').constData());
    }

    const QByteArray letter = "letter.txt", odd = "two words\n50%caf\xe9.txt", script = "s.py";
    const QUrl link{QStringLiteral("https://a.example/?b=c&d=\u00fc")};
    /// One for all tests: the library looks up only once where the user's programs are.
    static inline const QTemporaryDir home;
    TestPrograms programs;
    EnvironmentVariable data{"XDG_DATA_HOME", path("share")}, dirs{"XDG_DATA_DIRS", path("share")},
        config{"XDG_CONFIG_HOME", path("config")}, configs{"XDG_CONFIG_DIRS", path("none")},
        language{"LC_ALL", "de_DE.UTF-8"}, noSession{"DBUS_SESSION_BUS_ADDRESS", TestBus::address()},
        noSystem{"DBUS_SYSTEM_BUS_ADDRESS", TestBus::address()};
    QtMainLoop loop;
    MemoryPasteboard pasteboard;
    ThreadQueue queue;
    DesktopSharing sharing{queue, loop, pasteboard};
};

TEST_F(SharingTest, OffersOnlyWhatIsInstalled) {
    const QString longName = QStringLiteral("|>Added and a name that is longer than an\u2026");
    const QString openText = QStringLiteral("Open with|>Viewer") + longName + QStringLiteral("|>Schreiber");
    const struct {
        QUrl thing;
        QString offers, withMail;
    } cases[] = {
        {fileUrl(path(letter)), openText + joined("|Copy path"),
         joined("Send by mail…|") + openText + joined("|Copy path")},
        {fileUrl(path(odd)), openText + joined("|Copy path"),
         joined("Send by mail…|") + openText + joined("|Copy path")},
        {fileUrl(path(script)), QString(openText).insert(9, joined("|>Snake")) + joined("|Copy path"),
         joined("Send by mail…|") + QString(openText).insert(9, joined("|>Snake")) + joined("|Copy path")},
        {fileUrl(path("folder")), joined("Copy path"), joined("Copy path")},
        {fileUrl(path("absent")), joined("Copy path"), joined("Copy path")},
        {link, joined("Open with|>Browser|Copy link"), joined("Send by mail…|Open with|>Browser|Copy link")},
        {QUrl(QStringLiteral("gopher:x")), joined("Copy link"), joined("Send by mail…|Copy link")},
    };
    for (const auto& test : cases) EXPECT_EQ(titlesFor(test.thing), test.offers);
    programs.install("xdg-email");
    for (const auto& test : cases) EXPECT_EQ(titlesFor(test.thing), test.offers) << "nothing to mail with yet";
    installMail();
    // The library hears of new files a little later.
    ASSERT_TRUE(waitFor([&] { return titlesFor(link).startsWith(u"Send"); }));
    for (const auto& test : cases) EXPECT_EQ(titlesFor(test.thing), test.withMail);

    for (int i = 0; i < 30; ++i)
        entry("many" + QByteArray::number(i), "Name=x\nExec=viewer\nMimeType=x-scheme-handler/gopher;");
    EXPECT_TRUE(waitFor([&] {
        const auto offers = offersFor(QUrl(QStringLiteral("gopher:x")));
        return offers.size() == 3 && offers[1].choices.size() == 12;
    }));
}

TEST_F(SharingTest, PassesTheThingOn) {
    programs.install("xdg-email");
    installMail();
    const auto forFile = offersFor(fileUrl(path(odd)));
    const auto forLink = offersFor(link);
    ASSERT_TRUE(forFile.size() == 3 && forLink.size() == 3);
    forFile[0].choose();
    EXPECT_TRUE(tells("xdg-email", {"--attach", path(odd)}));
    forFile[1].choices[0].choose();
    EXPECT_TRUE(tells("viewer", {"--name", "Viewer", "--open=" + path(odd)}));
    forFile[1].choices[1].choose();
    EXPECT_TRUE(tells("viewer", {path(odd)})) << "with no place for it in the command";
    forFile[1].choices[2].choose();
    EXPECT_TRUE(tells("editor", {"file://" + path("two%20words%0A50%25caf%E9.txt")}));
    offersFor(fileUrl(path(letter))).last().choose();
    EXPECT_EQ(pasteboard.text, QString::fromUtf8(path(letter)));

    const QByteArray address = "https://a.example/?b=c&d=%C3%BC";
    forLink[0].choose();
    EXPECT_TRUE(tells("xdg-open", {"mailto:?body=https%3A%2F%2Fa.example%2F%3Fb%3Dc%26d%3D%25C3%25BC"}));
    forLink[1].choices[0].choose();
    EXPECT_TRUE(tells("browser", {address}));
    forLink[2].choose();
    EXPECT_EQ(pasteboard.text, QString::fromUtf8(address));
}

TEST_F(SharingTest, OffersDevicesThatAreThere) {
    qDBusRegisterMetaType<QMap<QString, QString>>();
    qDBusRegisterMetaType<Interfaces>();
    qDBusRegisterMetaType<Objects>();
    const TestBus bus;
    const QUrl file = fileUrl(path(odd));
    EXPECT_FALSE(titlesFor(file).contains(joined("Send"))) << "no services";

    TestService phones(QStringLiteral("org.kde.kdeconnect")), bluetooth(QStringLiteral("org.bluez"));
    phones.answer = [](const QDBusMessage& call) {
        if (call.member() == QLatin1String("deviceNames"))
            return call.createReply(
                QVariant::fromValue(QMap<QString, QString>{{QStringLiteral("id1"), QStringLiteral("My\nPhone")},
                                                           {QStringLiteral("id2"), QStringLiteral("Mouse")}}));
        if (call.member() == QLatin1String("hasPlugin"))
            return call.createReply(call.path().endsWith(QLatin1String("/devices/id1")));
        return call.createReply();
    };
    bool powered = false;
    bluetooth.answer = [&](const QDBusMessage& call) {
        const QVariantMap adapter{{QStringLiteral("Powered"), powered}};
        return call.createReply(QVariant::fromValue(
            Objects{{QDBusObjectPath(QStringLiteral("/org/bluez")), {}},
                    {QDBusObjectPath(QStringLiteral("/hci0")), {{QStringLiteral("org.bluez.Adapter1"), adapter}}}}));
    };
    programs.install("blueman-sendto");
    EXPECT_TRUE(titlesFor(file).startsWith(joined("Send to My Phone|Open with")));
    powered = true;
    EXPECT_EQ(titlesFor(fileUrl(path("folder"))), joined("Copy path"));
    EXPECT_EQ(titlesFor(link), joined("Send to My Phone|Open with|>Browser|Copy link"));
    const auto offers = offersFor(file);
    ASSERT_EQ(titles(offers).mid(0, 2).join(u'|'), joined("Send to My Phone|Send over Bluetooth…"));
    offers[0].choose();
    ASSERT_TRUE(waitFor([&] { return phones.calls.last().member() == QLatin1String("shareUrl"); }));
    EXPECT_EQ(phones.calls.last().path(), joined("/modules/kdeconnect/devices/id1/share"));
    EXPECT_EQ(phones.calls.last().interface(), joined("org.kde.kdeconnect.device.share"));
    EXPECT_EQ(phones.calls.last().arguments(), QVariantList{QString::fromUtf8(file.toEncoded())});
    offers[1].choose();
    EXPECT_TRUE(tells("blueman-sendto", {path(odd)}));

    phones.answer = [](const QDBusMessage&) { return QDBusMessage(); };
    bluetooth.answer = [](const QDBusMessage& call) { return call.createReply(QStringLiteral("nonsense")); };
    EXPECT_TRUE(titlesFor(file).startsWith(joined("Open with"))) << "neither answers as it should";
}

TEST_F(SharingTest, AnswersOnceAndInTime) {
    ManualClock clock;
    ManualLoop manual(clock);
    HeldQueue stuck;
    int calls = 0;
    QString found;
    const auto note = [&](const QList<ShareOffer>& offers) {
        ++calls;
        found = titles(offers).join(u'|');
    };
    auto slow = std::make_unique<DesktopSharing>(stuck, manual, pasteboard);
    slow->offers(link, note);
    manual.advance(1.9);
    EXPECT_EQ(calls, 0);
    manual.advance(0.2);
    EXPECT_EQ(found, joined("Copy link"));
    stuck.runAll();
    manual.drain();
    EXPECT_EQ(calls, 1);

    slow->offers(link, note);
    slow.reset();
    stuck.runAll();
    manual.advance(3);
    EXPECT_EQ(calls, 1) << "nobody is there any more";
    EXPECT_EQ(manual.pending(), 0);
}

}  // namespace
