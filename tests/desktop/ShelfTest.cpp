#include <QDir>
#include <QFile>
#include <QPainter>
#include <QProcess>

#include "desktop/DesktopTest.h"
#include "support/ClipboardManager.h"
#include "support/DragTools.h"
#include "support/SoundServer.h"

namespace {

/// What is on the shelf, touched with a real pointer. The open row of chips has its middle 112 points down.
class ShelfOfChips : public DesktopTest {
 protected:
    void start(const QStringList& flags = {}, const QList<QPair<QString, QString>>& variables = {}) {
        glimmet.reset();
        QProcessEnvironment environment = home.environment();
        environment.insert(QStringLiteral("PATH"),
                           home.filePath(QStringLiteral("bin")) + u':' + qEnvironmentVariable("PATH"));
        for (const auto& [name, value] : variables) environment.insert(name, value);
        glimmet = std::make_unique<Glimmet>(session, environment, home, QStringList{QStringLiteral("--trace")} + flags);
        ASSERT_TRUE(glimmet->started());
        ASSERT_TRUE(waitForEyes());
    }
    /// Writes a file that the shelf can hold, and gives its path.
    QByteArray file(const char* name, const QByteArray& contents = "contents") {
        QFile file(home.filePath(QString::fromUtf8(name)));
        EXPECT_TRUE(file.open(QFile::WriteOnly) && file.write(contents) == contents.size());
        return file.fileName().toUtf8();
    }
    QByteArray imageFile(const char* name, QSize size, const char* format) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(QColor(40, 120, 200));
        const QString path = home.filePath(QString::fromUtf8(name));
        EXPECT_TRUE(image.save(path, format));
        return path.toUtf8();
    }
    void hold(const QList<QByteArray>& paths, const QByteArray& bites = {}) {
        QByteArray lines = "glimmet.shelf = list";
        for (const QByteArray& path : paths) lines += ' ' + path.toPercentEncoding("/");
        if (!bites.isEmpty()) lines += "\nglimmet.bites = data " + bites.toPercentEncoding("{}[]\":,\\/_");
        home.setPreferences(lines + '\n');
    }
    /// A program of the user's that writes down what it is asked to open.
    void installOpener() {
        QDir().mkpath(home.filePath(QStringLiteral("bin")));
        QFile script(home.filePath(QStringLiteral("bin/xdg-open")));
        ASSERT_TRUE(script.open(QFile::WriteOnly));
        script.write("#!/bin/sh\nprintf '%s\\n' \"$*\" >>" + home.filePath(QStringLiteral("opened")).toUtf8() + "\n");
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    QByteArray opened() const {
        QFile file(home.filePath(QStringLiteral("opened")));
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// The middle of chip `i` of `count` (five at most, no pill).
    static QPoint chip(int i, int count) { return {int(756 + (i - (count - 1) / 2.0) * 56), 112}; }
    void openShelf() {
        session.glide(kFar, kOnNotch, 5, 10);
        ASSERT_TRUE(waitForBody(320, 152));
        ASSERT_TRUE(waitFor([&] { return windowAt({756, 112}) == glimmet->panel(); }));
    }
    void hoverChip(int i, int count) { session.glide(chip(i, count) + QPoint(0, 12), chip(i, count), 4, 15); }
    /// Opens the chip's menu and chooses the entry whose middle is `share` of the menu's height down.
    void chooseOn(int i, int count, double share) {
        hoverChip(i, count);
        session.click(chip(i, count), 3);
        ASSERT_TRUE(waitFor([&] { return glimmet->menus().size() == 1; }));
        const QRect menu = glimmet->menus().first();
        const QPoint entry(menu.left() + 30, menu.top() + int(menu.height() * share));
        session.glide(chip(i, count), entry, 10, 10);
        session.click(entry);
    }
    QByteArray stored(const char* key) const {
        for (const QByteArray& line : home.preferences().split('\n')) {
            if (line.startsWith(QByteArray(key) + " =")) return line;
        }
        return {};
    }

    static constexpr uint32_t kDown = 0xff54, kRight = 0xff53, kReturn = 0xff0d;  // X11 key symbols
    std::unique_ptr<Glimmet> glimmet;
};

TEST_F(ShelfOfChips, AClickOpensAFileAndTheButtonRemovesIt) {
    installOpener();
    const QByteArray first = file("first one.txt"), second = file("second.txt");
    hold({first, second});
    start();
    openShelf();
    session.click(chip(0, 2));
    EXPECT_TRUE(waitFor([&] { return opened().contains("first%20one.txt"); }));

    hoverChip(0, 2);
    EXPECT_TRUE(waitFor([&] {
        return glimmet->errors("trace: chip").contains(QStringLiteral("trace: chip first one.txt hover → true"));
    }));
    const QPoint button = chip(0, 2) + QPoint(17, -19);
    session.moveTo(button);
    session.press(1);
    session.glide(button, button + QPoint(20, 0), 5, 10);
    session.release(1);
    letPass(0.2);
    EXPECT_TRUE(stored("glimmet.shelf").contains("first%20one.txt")) << "a press that wanders is not meant";
    hoverChip(0, 2);
    session.moveTo(button);
    session.click(button);
    EXPECT_TRUE(waitFor([&] { return !stored("glimmet.shelf").contains("first"); }));
    EXPECT_TRUE(stored("glimmet.shelf").contains("second.txt"));
    EXPECT_TRUE(QFile::exists(QString::fromUtf8(first))) << "the file itself stays";
    // The chip that moves up under the pointer may glow in the confetti's orange.
    const QImage aboveTheChips = panelPicture().copy(0, 0, 360, 84);
    EXPECT_LE(colourfulPixels(aboveTheChips), 40) << "none of this was a tap on the creature";
}

TEST_F(ShelfOfChips, WhatWasCopiedOutlivesTheProgram) {
    for (const bool answers : {true, false}) {
        hold({}, R"([{"note":{"_0":"call the bank"}}])");
        start();
        openShelf();
        session.click(chip(0, 1));
        EXPECT_TRUE(waitFor([&] { return confettiFlies(); }));
        ASSERT_TRUE(waitFor([&] { return session.clipboard() == "call the bank"; }));
        ClipboardManager manager(session, answers);
        glimmet->terminate();
        ASSERT_TRUE(waitFor([&] {
            manager.work();
            return !glimmet->running();
        }));
        EXPECT_EQ(glimmet->exitCode(), 0);
        EXPECT_EQ(manager.requests, 1);
        EXPECT_EQ(manager.kept, answers ? "call the bank" : "");
    }
}

TEST_F(ShelfOfChips, AFileIsDraggedOutToAnotherProgram) {
    hold({file("out going.bin", QByteArray("\0\1\2bytes", 8))});
    start();
    DragTool target(session, DragTool::Kind::gtkTarget, {200, 600});
    openShelf();
    hoverChip(0, 1);
    session.press(1);
    session.glide(chip(0, 1), target.middle(), 40, 10);
    session.glide(target.middle(), target.middle() + QPoint(4, 4), 4, 30);
    session.release(1);
    EXPECT_TRUE(waitFor([&] {
        return target.lines().join(u' ').contains(QStringLiteral("out going.bin")) ||
               target.lines().join(u' ').contains(QStringLiteral("out%20going.bin"));
    })) << target.lines().join(u'\n').toStdString();
    EXPECT_TRUE(stored("glimmet.shelf").contains("out%20going.bin")) << "the shelf keeps it";
    EXPECT_TRUE(waitForBody(234, 74)) << "it closes, though the mouse rests where it dropped the file";
    openShelf();
    EXPECT_EQ(glimmet->panelFrame().x(), 576) << "a drag of a chip pushes nothing aside";
}

TEST_F(ShelfOfChips, TheMenuOfAChipChewsAnImage) {
    hold({imageFile("photo.png", {2400, 1200}, "png")});
    start();
    openShelf();
    hoverChip(0, 1);
    session.click(chip(0, 1), 3);
    ASSERT_TRUE(waitFor([&] { return glimmet->menus().size() == 1; }));
    // Keys choose "Smaller", the last of the fourth entry's submenu.
    session.tapKey(kDown, 4);
    session.tapKey(kRight);
    session.tapKey(kDown, 2);
    session.tapKey(kReturn);
    const QString made = home.filePath(QStringLiteral("photo-small.jpg"));
    ASSERT_TRUE(waitFor([&] { return QFile::exists(made); }, 15));
    EXPECT_EQ(QImage(made).size(), QSize(2000, 1000));
    EXPECT_TRUE(waitFor([&] { return stored("glimmet.shelf").contains("photo-small.jpg"); }));
}

TEST_F(ShelfOfChips, SelfTestsDropAndChewAndRead) {
    const QByteArray photo = imageFile("p.bmp", {300, 200}, "bmp"), broken = file("b.png", "no image");
    const auto run = [&](const QByteArray& flag, const char* last) {
        start({QString::fromUtf8(flag)});
        EXPECT_TRUE(waitFor([&] { return !glimmet->errors(last).isEmpty(); }, 8));
        return glimmet->errors(last).value(0);
    };
    EXPECT_EQ(run("--droptest=" + photo + ",,/nonexistent/x," + broken, "droptest: shelf"),
              QStringLiteral("droptest: shelf now [p.bmp, b.png]"));
    EXPECT_EQ(glimmet->errors("droptest: 3"), QStringList{QStringLiteral("droptest: 3 paths → 2 providers")});
    EXPECT_EQ(run("--chewtest=" + photo, "chewtest:"), QStringLiteral("chewtest: held=[p.bmp, p.jpg] notes=0"));
    EXPECT_EQ(run("--chewtest=" + photo + ",smaller", "chewtest:"),
              QStringLiteral("chewtest: held=[p.bmp, p-small.jpg] notes=0"));
    EXPECT_EQ(run("--chewtest=" + photo + ",png,", "chewtest:"), QStringLiteral("chewtest: held=[p.bmp] notes=0"));
    EXPECT_EQ(run("--chewtest=" + broken + ",png", "chewtest:"), QStringLiteral("chewtest: held=[b.png] notes=0"));
}

TEST_F(ShelfOfChips, TextIsReadOutOfAScreenshot) {
    QImage image(420, 120, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(18);
    painter.setFont(font);
    painter.drawText(QRect(10, 10, 400, 100),
                     QStringLiteral("Meet at the station\nTrain leaves at noon\nBring the tickets"));
    painter.end();
    ASSERT_TRUE(image.save(home.filePath(QStringLiteral("shot.png"))));
    start({QStringLiteral("--chewtest=") + home.filePath(QStringLiteral("shot.png")) + QStringLiteral(",read")});
    EXPECT_TRUE(waitFor([&] { return stored("glimmet.bites").contains("Train%20leaves%20at%20noon"); }, 15))
        << stored("glimmet.bites").toStdString();
    EXPECT_EQ(session.clipboard(), "Meet at the station\nTrain leaves at noon\nBring the tickets");
}

TEST_F(ShelfOfChips, UnfoldsAsFarDownAsItMust) {
    QList<QByteArray> paths;
    for (int i = 0; i < 12; ++i) paths.append(file(("f" + QByteArray::number(i)).constData()));
    hold(paths);
    start();
    openShelf();
    // Three chips and the pill with what is not shown.
    session.click({756 + 87, 112});
    ASSERT_TRUE(waitFor([&] { return glimmet->panelFrame().height() > 284; }));
    ASSERT_TRUE(waitFor([&] { return windowAt({756, 270}) == glimmet->panel(); }));
    session.glide(kOnNotch, {756 + 28, 225}, 5, 10);
    EXPECT_TRUE(waitFor([&] { return glimmet->errors("trace: chip f11").size() == 1; }))
        << glimmet->errors().join(u'\n').toStdString();
    session.glide({784, 225}, kFar, 5, 10);
    EXPECT_TRUE(waitFor([&] { return glimmet->panelFrame().height() == 230; }));
    EXPECT_TRUE(waitForBody(234, 74));
}

TEST_F(ShelfOfChips, ATimerRingsThroughTheSoundServer) {
    SoundServer server(home.filePath(QStringLiteral("sound")));
    ASSERT_TRUE(server.started());
    SoundServer::Recording heard(server);
    ASSERT_TRUE(heard.started());
    start({QStringLiteral("--timer=1")}, {{QStringLiteral("PULSE_SERVER"), server.address()}});
    EXPECT_TRUE(waitFor([&] { return confettiFlies(); }, 8));
    EXPECT_TRUE(waitFor([&] { return heard.loudest() > 500; }));
    EXPECT_TRUE(stored("glimmet.timers").contains("true"));
    openShelf();
    session.click(kOnNotch);
    EXPECT_TRUE(waitFor([&] { return stored("glimmet.timers").endsWith("[]"); })) << "a tap takes the rung timer away";
}

}  // namespace
