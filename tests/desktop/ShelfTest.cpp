#include <QPainter>

#include "desktop/DesktopTest.h"
#include "support/DragTools.h"
#include "support/SoundServer.h"

using namespace Qt::StringLiterals;

namespace {

/// A program of the desktop that keeps what others leave on the clipboard when they end, or does not answer them.
class ClipboardManager {
 public:
    ClipboardManager(const XSession& session, bool answers) : client_(session.display()), answers_(answers) {
        xcb_create_window(client_.xcb(), XCB_COPY_FROM_PARENT, window_, client_.root(), -10, -10, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_set_selection_owner(client_.xcb(), window_, client_.atom("CLIPBOARD_MANAGER"), XCB_CURRENT_TIME);
        client_.sync();  // another client's request may overtake one that is only sent
    }

    /// Does what it has been asked; to be called in the conditions that a test waits for.
    void work() {
        while (const auto event = owned(xcb_poll_for_event(client_.xcb()))) {
            const int code = event->response_type & 0x7f;
            if (code == XCB_SELECTION_REQUEST) asked(*reinterpret_cast<xcb_selection_request_event_t*>(event.get()));
            if (code == XCB_SELECTION_NOTIFY) take(*reinterpret_cast<xcb_selection_notify_event_t*>(event.get()));
        }
    }

    int requests = 0;
    QByteArray text;  ///< that it has taken over

 private:
    void asked(const xcb_selection_request_event_t& request) {
        if (request.target != client_.atom("SAVE_TARGETS")) return;
        ++requests;
        answer_ = {XCB_SELECTION_NOTIFY, 0, 0, 0, request.requestor, request.selection, request.target,
                   request.property};
        if (!answers_) return;
        xcb_convert_selection(client_.xcb(), window_, client_.atom("CLIPBOARD"), client_.atom("UTF8_STRING"),
                              client_.atom("TEXT"), XCB_CURRENT_TIME);
        xcb_flush(client_.xcb());
    }
    void take(const xcb_selection_notify_event_t& notify) {
        const auto cookie = xcb_get_property(client_.xcb(), false, window_, notify.property, XCB_ATOM_ANY, 0, 1 << 16);
        if (const auto reply = owned(xcb_get_property_reply(client_.xcb(), cookie, nullptr)))
            text = QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
                              xcb_get_property_value_length(reply.get()));
        xcb_send_event(client_.xcb(), false, answer_.requestor, 0, reinterpret_cast<const char*>(&answer_));
        xcb_flush(client_.xcb());
    }

    XClient client_;
    bool answers_;
    const xcb_window_t window_ = xcb_generate_id(client_.xcb());
    xcb_selection_notify_event_t answer_{};
};

/// What is on the shelf, touched with a real pointer. The open row of chips has its middle 112 points down.
class ShelfOfChips : public DesktopTest {
 protected:
    void startTraced(const QStringList& flags = {}, const Variables& variables = {}) {
        ASSERT_NO_FATAL_FAILURE(start(QStringList{u"--trace"_s} + flags, variables));
        ASSERT_TRUE(waitForEyes());
    }
    QByteArray imageFile(const char* name, QSize size, const char* text = "") {
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setFont(QFont(u"DejaVu Sans"_s, 14));
        painter.drawText(image.rect().adjusted(10, 10, -10, -10), QString::fromUtf8(text));
        EXPECT_TRUE(image.save(QString::fromUtf8(home.path(name))));
        return home.path(name);
    }
    void hold(const QList<QByteArray>& paths, const QByteArray& bites = "[]") {
        QByteArray lines = "glimmet.bites = data " + bites.toPercentEncoding("{}[]\":,\\/_") + "\nglimmet.shelf = list";
        for (const QByteArray& path : paths) lines += ' ' + path.toPercentEncoding("/");
        home.setPreferences(lines + '\n');
    }
    QByteArray clipboard() const {
        Child reader(u"xclip -selection clipboard -o"_s.split(u' '), session.display());
        return reader.waitForFinished(5000) ? reader.readAllStandardOutput() : QByteArray();
    }
    /// The middle of chip `i` of `count` (five at most, no pill).
    static QPoint chip(int i, int count) { return {int(756 + (i - (count - 1) / 2.0) * 56), 112}; }
    void openShelf() {
        session.glide(kFar, kOnNotch, 5, 10);
        ASSERT_TRUE(waitForBody(320, 152));
        ASSERT_TRUE(waitFor([&] { return windowAt({756, 112}) == glimmet->panel(); }));
    }
    void hoverChip(int i, int count) { session.glide(chip(i, count) + QPoint(0, 12), chip(i, count), 4, 15); }
};

TEST_F(ShelfOfChips, AClickOpensAFileAndTheButtonRemovesIt) {
    const QByteArray opener = home.write("bin/xdg-open", "#!/bin/sh\nprintf '%s' \"$*\" >\"$HOME/opened\"\n");
    QFile::setPermissions(QString::fromUtf8(opener), QFile::ReadOwner | QFile::ExeOwner);
    const QByteArray first = home.write("first one.txt", ""), second = home.write("second.txt", "");
    hold({first, second});
    ASSERT_NO_FATAL_FAILURE(startTraced());
    openShelf();
    session.click(chip(0, 2));
    EXPECT_TRUE(waitFor([&] { return home.read("opened").contains("first%20one.txt"); }));

    hoverChip(0, 2);
    EXPECT_TRUE(waitFor([&] { return !glimmet->errors("trace: chip first one.txt hover → true").isEmpty(); }));
    const QPoint button = chip(0, 2) + QPoint(17, -19);
    session.moveTo(button);
    session.click(button);
    EXPECT_TRUE(waitFor([&] { return !home.stored("glimmet.shelf").contains("first"); }));
    EXPECT_TRUE(home.holds("glimmet.shelf", "second.txt"));
    EXPECT_TRUE(QFile::exists(QString::fromUtf8(first))) << "the file itself stays";
    // The chip that moves up under the pointer may glow in the confetti's orange.
    const QImage aboveTheChips = panelPicture().copy(0, 0, 360, 84);
    EXPECT_LE(colourfulPixels(aboveTheChips), 40) << "none of this was a tap on the creature";
}

TEST_F(ShelfOfChips, WhatWasCopiedOutlivesTheProgram) {
    for (const bool answers : {true, false}) {
        hold({}, R"([{"note":{"_0":"call the bank"}}])");
        ASSERT_NO_FATAL_FAILURE(startTraced());
        openShelf();
        session.click(chip(0, 1));
        EXPECT_TRUE(waitFor([&] { return confettiFlies(); }));
        ASSERT_TRUE(waitFor([&] { return clipboard() == "call the bank"; }));
        ClipboardManager manager(session, answers);
        glimmet->terminate();
        ASSERT_TRUE(waitFor([&] { return manager.work(), !glimmet->running(); }));
        EXPECT_TRUE(glimmet->ends());
        EXPECT_EQ(manager.requests, 1);
        EXPECT_EQ(manager.text, answers ? "call the bank" : "");
    }
}

TEST_F(ShelfOfChips, AFileIsDraggedOutToAnotherProgram) {
    hold({home.write("out going.bin", "bytes")});
    ASSERT_NO_FATAL_FAILURE(startTraced());
    DragTool target(session, DragTool::Kind::gtkTarget, {200, 600});
    openShelf();
    hoverChip(0, 1);
    session.press(1);
    session.glide(chip(0, 1), target.middle(), 40, 10);
    session.glide(target.middle(), target.middle() + QPoint(4, 4), 4, 30);
    session.release(1);
    EXPECT_TRUE(waitFor([&] { return target.said(u"bytes bytes"_s); })) << target.lines().join(u'\n').toStdString();
    EXPECT_TRUE(target.lines().first(2).last().endsWith(u"out%20going.bin"_s));
    EXPECT_TRUE(home.holds("glimmet.shelf", "out%20going.bin")) << "the shelf keeps it";
    EXPECT_TRUE(waitForBody(234, 74)) << "it closes, though the mouse rests where it dropped the file";
    openShelf();
    EXPECT_EQ(glimmet->panelFrame().x(), 576) << "a drag of a chip pushes nothing aside";
    session.click(kOnNotch);
    EXPECT_TRUE(waitFor([&] { return confettiFlies(); })) << "the next press counts";
}

TEST_F(ShelfOfChips, SelfTestsDropAndChewAndRead) {
    const QByteArray photo = imageFile("p.bmp", {300, 200}), broken = home.write("b.png", "no image");
    const struct {
        QByteArray flag;
        const char* said;
    } cases[] = {{"--droptest=" + photo + ",,/nonexistent/x," + broken, "droptest: shelf now [p.bmp, b.png]"},
                 {"--chewtest=" + photo, "chewtest: held=[p.bmp, p.jpg] notes=0"},
                 {"--chewtest=" + photo + ",smaller", "chewtest: held=[p.bmp, p-small.jpg] notes=0"},
                 {"--chewtest=" + photo + ",png,", "chewtest: held=[p.bmp] notes=0"},
                 {"--chewtest=" + broken + ",png", "chewtest: held=[b.png] notes=0"}};
    for (const auto& [flag, said] : cases) {
        ASSERT_NO_FATAL_FAILURE(startTraced({QString::fromUtf8(flag)}));
        EXPECT_TRUE(waitFor([&] { return glimmet->errors().contains(QString::fromUtf8(said)); }, 8))
            << glimmet->errors().join(u'\n').toStdString() << "\ninstead of " << said;
        EXPECT_EQ(glimmet->errors("droptest: 3 paths → 2 providers").size(), flag.startsWith("--drop") ? 1 : 0);
    }
    const QByteArray shot =
        imageFile("shot.png", {420, 120}, "Meet at the station\nTrain leaves at noon\nBring tickets");
    ASSERT_NO_FATAL_FAILURE(startTraced({QString::fromUtf8("--chewtest=" + shot + ",read")}));
    EXPECT_TRUE(waitFor([&] { return home.stored("glimmet.bites").contains("Train%20leaves%20at%20noon"); }, 15));
    EXPECT_EQ(clipboard(), "Meet at the station\nTrain leaves at noon\nBring tickets");
}

TEST_F(ShelfOfChips, UnfoldsAsFarDownAsItMust) {
    QList<QByteArray> paths;
    for (int i = 0; i < 12; ++i) paths.append(home.write("f" + QByteArray::number(i), ""));
    hold(paths);
    ASSERT_NO_FATAL_FAILURE(startTraced());
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
    SoundServer server(QString::fromUtf8(home.path("sound")));
    ASSERT_TRUE(server.started());
    ASSERT_NO_FATAL_FAILURE(startTraced({u"--timer=1"_s}, {{"PULSE_SERVER", server.address()}}));
    bool seen = false, heard = false;
    EXPECT_TRUE(waitFor(
        [&] {
            heard = heard || server.plays(glimmet->pid());
            return (seen = seen || confettiFlies()) && heard;
        },
        8))
        << seen << heard;
    EXPECT_TRUE(home.holds("glimmet.timers", "true"));
    openShelf();
    session.click(kOnNotch);
    EXPECT_TRUE(waitFor([&] { return home.stored("glimmet.timers").endsWith("[]"); })) << "a tap takes it away";
}

}  // namespace
