#include <QDBusMetaType>

#include "TestBus.h"
#include "TestPrograms.h"
#include "platform/FileUrls.h"
#include "platform/linux/QtMainLoop.h"
#include "platform/linux/ThreadQueues.h"
#include "platform/linux/freedesktop/DesktopSharing.h"
#include "support/ManualLoop.h"
#include "support/MemoryPorts.h"

using namespace Qt::StringLiterals;

namespace {

using Interfaces = QMap<QString, QVariantMap>;
using Objects = QMap<QDBusObjectPath, Interfaces>;

QStringList titles(const QList<ShareOffer>& offers) {
    QStringList result;
    for (const ShareOffer& offer : offers) {
        EXPECT_NE(offer.choices.isEmpty(), !offer.choose) << offer.title.toStdString();
        result.append(offer.title);
        for (const ShareOffer& choice : offer.choices) result.append(u'>' + choice.title);
    }
    return result;
}

/// A home with files and programs, on a desktop with no buses.
class SharingTest : public testing::Test {
 protected:
    SharingTest() {
        for (const QByteArray& file : {letter, odd, script, QByteArray("folder/file")}) home.write(file, "x");
        for (const char* program : {"editor", "viewer", "browser", "mailer", "snake", "xdg-open"})
            programs.install(program);
        // The handlers of addresses are in no cache, as where nobody runs the desktop's tool for it.
        for (const auto& [id, lines] :
             {std::pair("editor", "Name[de]=Schreiber\nName=Editor\nExec=editor %U\nMimeType=text/html;text/plain;"),
              {"viewer", "Name=Viewer\nExec=viewer --name %c --open=%f %i\nMimeType=text/plain;"},
              {"console", "Name=Console\nExec=viewer %f\nTerminal=true\nMimeType=text/plain;"},
              {"gone", "Name=Gone\nExec=gone %f\nMimeType=text/plain;"},
              {"half", "Name=Half\nExec=viewer %f\nTryExec=gone\nMimeType=text/plain;"},
              {"removed", "Name=Removed\nExec=viewer %f\nMimeType=text/plain;"},
              {"added", "Name=Added \\n and a name that is longer than any menu should be\nExec=viewer"},
              {"snake", "Name=Snake\nExec=snake %F\nMimeType=text/x-python;"},
              {"browser", "Name=Browser\nExec=browser %u\nMimeType=x-scheme-handler/https;"}})
            entry(id, lines);
        home.write("share/applications/mimeinfo.cache", R"([MIME Cache]
text/html=editor.desktop;
text/x-python=snake.desktop;
text/plain=editor.desktop;viewer.desktop;console.desktop;gone.desktop;half.desktop;removed.desktop;
)");
        home.write("config/mimeapps.list", R"([Default Applications]
text/plain=absent.desktop;viewer.desktop
[Added Associations]
text/plain=added.desktop;
[Removed Associations]
text/plain=removed.desktop;
)");
        std::filesystem::create_directory_symlink("/usr/share/mime", path("share/mime").toStdString());
    }
    ~SharingTest() override { std::filesystem::remove_all(path("share").toStdString()); }

    static QByteArray path(const QByteArray& name) { return home.path(name); }
    static void entry(const QByteArray& id, const QByteArray& lines) {
        home.write("share/applications/" + id + ".desktop", "[Desktop Entry]\nType=Application\n" + lines + '\n');
    }
    void installMail() const {
        programs.install("xdg-email");
        entry("mailer", "Name=Mailer\nExec=mailer %u\nMimeType=x-scheme-handler/mailto;");
    }

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

    const QByteArray letter = "letter.txt", odd = "two words\n50%caf\xe9.txt", script = "s.py";
    const QUrl link{u"https://a.example/?b=c&d=\u00fc"_s};
    /// One for all tests: the library looks up only once where the user's programs are.
    static inline const TestFolder home;
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
    const QString openText = u"|>Viewer|>Added and a name that is longer than an…|>Schreiber|Copy path"_s;
    const struct {
        QUrl thing;
        QString offers;
        bool mail;
    } cases[] = {
        {fileUrl(path(odd)), u"Open with"_s + openText, true},
        {fileUrl(path(script)), u"Open with|>Snake"_s + openText, true},
        {fileUrl(path("folder")), u"Copy path"_s, false},
        {fileUrl(path("absent")), u"Copy path"_s, false},
        {link, u"Open with|>Browser|Copy link"_s, true},
        {QUrl(u"gopher:x"_s), u"Copy link"_s, true},
    };
    for (const bool half : {false, true}) {
        if (half) programs.install("xdg-email");
        for (const auto& test : cases) EXPECT_EQ(titlesFor(test.thing), test.offers) << half;
    }
    installMail();
    // The library hears of new files a little later.
    ASSERT_TRUE(waitFor([&] { return titlesFor(link).startsWith(u"Send"); }));
    for (const auto& test : cases)
        EXPECT_EQ(titlesFor(test.thing), (test.mail ? u"Send by mail…|"_s : QString()) + test.offers);

    for (int i = 0; i < 30; ++i)
        entry("many" + QByteArray::number(i), "Name=x\nExec=viewer\nMimeType=x-scheme-handler/gopher;");
    EXPECT_TRUE(waitFor([&] {
        const auto offers = offersFor(QUrl(u"gopher:x"_s));
        return offers.size() == 3 && offers[1].choices.size() == 12;
    }));
}

TEST_F(SharingTest, PassesTheThingOn) {
    installMail();
    const auto forFile = offersFor(fileUrl(path(odd))), forLink = offersFor(link);
    ASSERT_TRUE(forFile.size() == 3 && forLink.size() == 3);
    offersFor(fileUrl(path(letter))).last().choose();
    EXPECT_EQ(pasteboard.texts.last(), QString::fromUtf8(path(letter)));

    const QByteArray address = "https://a.example/?b=c&d=%C3%BC";
    const std::tuple<ShareOffer, const char*, QByteArrayList> starts[] = {
        {forFile[0], "xdg-email", {"--attach", path(odd)}},
        {forFile[1].choices[0], "viewer", {"--name", "Viewer", "--open=" + path(odd)}},
        {forFile[1].choices[1], "viewer", {path(odd)}},  // with no place for it in the command
        {forFile[1].choices[2], "editor", {"file://" + path("two%20words%0A50%25caf%E9.txt")}},
        {forLink[0], "xdg-open", {"mailto:?body=https%3A%2F%2Fa.example%2F%3Fb%3Dc%26d%3D%25C3%25BC"}},
        {forLink[1].choices[0], "browser", {address}},
    };
    for (const auto& [offer, program, arguments] : starts) {
        offer.choose();
        EXPECT_TRUE(programs.tells(program, arguments));
    }
    forLink[2].choose();
    EXPECT_EQ(pasteboard.texts.last(), QString::fromUtf8(address));
}

TEST_F(SharingTest, OffersDevicesThatAreThere) {
    qDBusRegisterMetaType<QMap<QString, QString>>();
    qDBusRegisterMetaType<Interfaces>();
    qDBusRegisterMetaType<Objects>();
    const TestBus bus;
    const QUrl file = fileUrl(path(odd));
    EXPECT_FALSE(titlesFor(file).contains(u"Send"_s)) << "no services";

    TestService phones(u"org.kde.kdeconnect"_s), bluetooth(u"org.bluez"_s);
    phones.answer = [](const QDBusMessage& call) {
        if (call.member() == QLatin1String("deviceNames"))
            return call.createReply(
                QVariant::fromValue(QMap<QString, QString>{{u"id1"_s, u"My\nPhone"_s}, {u"id2"_s, u"Mouse"_s}}));
        if (call.member() == QLatin1String("hasPlugin"))
            return call.createReply(call.path().endsWith(QLatin1String("/devices/id1")));
        return call.createReply();
    };
    bool powered = false;
    bluetooth.answer = [&](const QDBusMessage& call) {
        const QVariantMap adapter{{u"Powered"_s, powered}};
        return call.createReply(
            QVariant::fromValue(Objects{{QDBusObjectPath(u"/org/bluez"_s), {}},
                                        {QDBusObjectPath(u"/hci0"_s), {{u"org.bluez.Adapter1"_s, adapter}}}}));
    };
    programs.install("blueman-sendto");
    EXPECT_TRUE(titlesFor(file).startsWith(u"Send to My Phone|Open with"_s));
    powered = true;
    EXPECT_EQ(titlesFor(fileUrl(path("folder"))), u"Copy path"_s);
    EXPECT_EQ(titlesFor(link), u"Send to My Phone|Open with|>Browser|Copy link"_s);
    const auto offers = offersFor(file);
    ASSERT_EQ(titles(offers).mid(0, 2).join(u'|'), u"Send to My Phone|Send over Bluetooth…"_s);
    offers[0].choose();
    ASSERT_TRUE(waitFor([&] { return phones.calls.last().member() == QLatin1String("shareUrl"); }));
    EXPECT_EQ(phones.calls.last().path(), u"/modules/kdeconnect/devices/id1/share"_s);
    EXPECT_EQ(phones.calls.last().interface(), u"org.kde.kdeconnect.device.share"_s);
    EXPECT_EQ(phones.calls.last().arguments(), QVariantList{QString::fromUtf8(file.toEncoded())});
    offers[1].choose();
    EXPECT_TRUE(programs.tells("blueman-sendto", {path(odd)}));

    phones.answer = [](const QDBusMessage&) { return QDBusMessage(); };
    bluetooth.answer = [](const QDBusMessage& call) { return call.createReply(u"nonsense"_s); };
    EXPECT_TRUE(titlesFor(file).startsWith(u"Open with"_s)) << "neither answers as it should";
}

TEST_F(SharingTest, AnswersOnceAndInTime) {
    ManualClock clock;
    ManualLoop manual(clock);
    HeldQueue stuck;
    QStringList found;
    auto slow = std::make_unique<DesktopSharing>(stuck, manual, pasteboard);
    const auto ask = [&] { slow->offers(link, [&](const auto& offers) { found += titles(offers); }); };
    ask();
    manual.advance(1.9);
    EXPECT_EQ(found, QStringList());
    manual.advance(0.2);
    EXPECT_EQ(found, QStringList{u"Copy link"_s});
    stuck.runAll();
    manual.drain();
    ask();
    slow.reset();
    stuck.runAll();
    manual.advance(3);
    EXPECT_EQ(found.size(), 1) << "nobody is there any more";
    EXPECT_EQ(manual.pending(), 0);
}

}  // namespace
