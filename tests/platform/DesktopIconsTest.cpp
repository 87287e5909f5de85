#include <utime.h>

#include <QCryptographicHash>

#include "platform/FileUrls.h"
#include "platform/linux/QtMainLoop.h"
#include "platform/linux/ThreadQueues.h"
#include "platform/linux/freedesktop/DesktopIcons.h"
#include "platform/linux/freedesktop/IconTheme.h"
#include "support/Environment.h"
#include "support/TestFolder.h"
#include "support/XSession.h"

namespace {

/// A user's home with files, thumbnails and an icon theme.
class DesktopIconsTest : public testing::Test {
 protected:
    DesktopIconsTest() {
        write("config/gtk-3.0/settings.ini", "[Settings]\ngtk-icon-theme-name = Mine\n");
        write("data/icons/Mine/index.theme",
              "[Icon Theme]\nInherits=hicolor,Theirs\nDirectories=16/m,48/m,any/m\n[16/m]\nSize=16\nType=Fixed\n"
              "[48/m]\nSize=48\n[any/m]\nSize=64\nMinSize=100\nMaxSize=512\nType=Scalable\n");
        write("data/icons/Theirs/index.theme", "[Icon Theme]\nDirectories=48/m\n[48/m]\nSize=48\n");
        picture("data/icons/Mine/16/m/text-plain.png", 16, Qt::red);
        picture("data/icons/Mine/48/m/text-plain.png", 48, Qt::green);
        write("data/icons/Mine/any/m/text-plain.svg",
              "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 1 1'><path d='M0 0h1v1H0' fill='#00f'/></svg>");
        picture("data/icons/Theirs/48/m/folder.png", 48, Qt::yellow);
        picture("data/icons/Theirs/48/m/image-x-generic.png", 48, Qt::cyan);
        picture("data/icons/Theirs/48/m/own.png", 48, Qt::magenta);
    }

    QByteArray path(const QByteArray& name) const { return home.path(name); }
    void write(const QByteArray& name, const QByteArray& text) const { home.write(name, text); }
    void picture(const QByteArray& name, int size, const QColor& colour, const QString& modified = {}) const {
        QImage image(size, size / 2, QImage::Format_RGB32);
        image.fill(colour);
        if (!modified.isEmpty()) image.setText(QStringLiteral("Thumb::MTime"), modified);
        // Like the address in any thumbnail, compressed for its length, and unpacked by nobody here.
        image.setText(QStringLiteral("Thumb::URI"), QString(4096, u'x'));
        write(name, {});
        ASSERT_TRUE(image.save(QString::fromUtf8(path(name)), "PNG"));
    }
    /// Where other programs file the thumbnail of what has this address.
    static QByteArray thumbnail(const char* folder, const QByteArray& address) {
        const auto hash = QCryptographicHash::hash(address, QCryptographicHash::Md5).toHex();
        return "cache/thumbnails/" + QByteArray(folder) + '/' + hash + ".png";
    }
    QImage find(const QByteArray& name, int pixels) {
        std::optional<QImage> result;
        icons.find(fileUrl(path(name)), pixels, [&](const QImage& image) { result = image; });
        EXPECT_FALSE(result) << "not at once";
        EXPECT_TRUE(waitFor([&] { return result.has_value(); }));
        return result.value_or(QImage());
    }
    static QColor middle(const QImage& image) {
        return image.isNull() ? QColor() : image.pixelColor(image.width() / 2, image.height() / 2);
    }

    TestFolder home;
    EnvironmentVariable data{"XDG_DATA_HOME", path("data")}, config{"XDG_CONFIG_HOME", path("config")},
        cache{"XDG_CACHE_HOME", path("cache")}, desktop{"XDG_CURRENT_DESKTOP", "other"};
    QtMainLoop loop;
    ThreadQueue queue;
    DesktopIcons icons{queue, loop};
};

TEST_F(DesktopIconsTest, ShowTheKindOfFileInTheSizeThatFits) {
    write("a.txt", "x");
    write("two words\n50%caf\xe9.txt", "x");
    write("noname", "just text\n");
    write("picture.png", "no picture at all");
    write("shortcut.desktop", "[Desktop Entry]\nType=Application\nName=x\nIcon=own\n");
    write("trap.desktop", "[Desktop Entry]\nType=Link\nIcon=" + path("data/icons/Theirs/48/m/own.png") + "\n");
    write("folder/file", "");
    const std::tuple<const char*, int, QColor, QSize> cases[] = {
        {"a.txt", 16, Qt::red, {16, 8}},         {"a.txt", 15, Qt::red, {15, 7}},
        {"a.txt", 17, Qt::green, {17, 8}},       {"a.txt", 48, Qt::green, {48, 24}},
        {"a.txt", 51, Qt::blue, {51, 51}},       {"a.txt", 200, Qt::blue, {200, 200}},
        {"noname", 48, Qt::green, {48, 24}},     {"two words\n50%caf\xe9.txt", 48, Qt::green, {48, 24}},
        {"folder", 48, Qt::yellow, {48, 24}},    {"folder/", 90, Qt::yellow, {48, 24}},
        {"picture.png", 48, Qt::cyan, {48, 24}}, {"shortcut.desktop", 48, Qt::magenta, {48, 24}},
        {"nothing there", 48, QColor(), {0, 0}},
    };
    for (const auto& [name, pixels, colour, size] : cases) {
        const QImage image = find(name, pixels);
        EXPECT_EQ(middle(image), colour) << name << pixels << ": " << middle(image).name().toStdString();
        EXPECT_EQ(image.size(), size) << name << pixels;
    }
    EXPECT_NE(middle(find("trap.desktop", 48)), QColor(Qt::magenta)) << "only icons of the theme";
}

TEST_F(DesktopIconsTest, PreferAThumbnailOfTheFileAsItIs) {
    const utimbuf modified{1000, 1234};
    const QByteArray plain = "p;1.txt", odd = "caf\xe9 [a].txt", stale = "stale.txt", bomb = "bomb.txt",
                     big = "big.txt";
    for (const QByteArray& name : {plain, odd, stale, bomb, big}) {
        write(name, "x");
        ASSERT_EQ(utime(path(name).constData(), &modified), 0);
    }
    const QByteArray root = "file://" + path("");
    picture(thumbnail("normal", root + "p%3B1.txt"), 128, Qt::darkRed, QStringLiteral("1234"));
    picture(thumbnail("large", root + "p%3B1.txt"), 256, Qt::darkGreen, QStringLiteral("1234.5"));
    picture(thumbnail("x-large", root + "caf%E9%20%5Ba%5D.txt"), 512, Qt::darkBlue, QStringLiteral("1234"));
    picture(thumbnail("normal", root + "stale.txt"), 128, Qt::darkRed, QStringLiteral("1233"));
    picture(thumbnail("large", root + "bomb.txt"), 1026, Qt::darkRed, QStringLiteral("1234"));
    write(thumbnail("normal", root + "big.txt"), QByteArray(5 << 20, 'x'));
    const std::tuple<QByteArray, int, QColor> cases[] = {
        {plain, 90, Qt::darkRed}, {plain, 129, Qt::darkGreen}, {plain, 500, Qt::darkGreen}, {odd, 40, Qt::darkBlue},
        {stale, 48, Qt::green},   {bomb, 48, Qt::green},       {big, 48, Qt::green},
    };
    for (const auto& [name, pixels, colour] : cases) {
        const QImage image = find(name, pixels);
        EXPECT_EQ(middle(image), colour) << name.constData() << pixels << ": " << middle(image).name().toStdString();
        EXPECT_LE(image.width(), pixels);
        EXPECT_FALSE(image.textKeys().contains(QStringLiteral("Thumb::URI")));
    }
}

TEST_F(DesktopIconsTest, BadThemesDoNoHarm) {
    write("data/icons/Loop/index.theme",
          "[Icon Theme]\nInherits=Loop,Loop2,../Mine\nDirectories=16/m,/etc,,none\n"
          "[16/m]\nSize=-1\nScale=x\n[none]\nSize=0\n");
    write("data/icons/Loop2/index.theme", "[Icon Theme]\nInherits=Loop,Theirs\n[Icon Theme\n=\n");
    const IconTheme theme({QStringLiteral("Loop"), QString(), QStringLiteral("..")},
                          {QString::fromUtf8(path("data/icons"))});
    EXPECT_EQ(theme.find({QStringLiteral("../../index"), QString(), QStringLiteral("folder")}, 48),
              QString::fromUtf8(path("data/icons/Theirs/48/m/folder.png")));
    EXPECT_EQ(theme.find({QStringLiteral("absent")}, 48), QString());
}

}  // namespace
