#pragma once

#include <signal.h>
#include <sys/prctl.h>
#include <xcb/shape.h>

#include <QDateTime>
#include <QRegion>

#include "support/TestFolder.h"
#include "support/XSession.h"

using Variables = QList<QPair<const char*, QString>>;

/// The folders in which one user's programs keep what they know, all of them temporary. It outlives the programs that
/// are started in it, so that a second one finds what the first one left.
class Home : public TestFolder {
 public:
    Home() {
        for (const char* name : {"config/glimmet", "data", "cache", "bin", "runtime"})
            std::filesystem::create_directories(path(name).toStdString());
        std::filesystem::permissions(path("runtime").toStdString(), std::filesystem::perms::owner_all);
    }
    QByteArray preferences() const { return read(kPreferences); }
    /// The line that stores `key`.
    QByteArray stored(const char* key) const {
        for (const QByteArray& line : preferences().split('\n')) {
            if (line.startsWith(QByteArray(key) + " =")) return line;
        }
        return {};
    }
    /// Waits until what is stored for `key` contains `what`.
    testing::AssertionResult holds(const char* key, const QByteArray& what) const {
        const auto result = waitFor([&] { return stored(key).contains(what); });
        return result ? result : testing::AssertionFailure() << "stored is: " << preferences().toStdString();
    }
    /// Lays them down before the program starts.
    void setPreferences(const QByteArray& contents) const { write(kPreferences, contents); }
    /// Ours, with the folders put in, no display, and a time zone in which it is early afternoon: by night the creature
    /// is sleepy.
    QProcessEnvironment environment() const {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "DBUS_SESSION_BUS_ADDRESS"})
            environment.remove(QLatin1String(name));
        const auto at = [this](const char* name) { return QString::fromUtf8(path(name)); };
        const Variables ours{{"HOME", at("")},
                             {"XDG_CONFIG_HOME", at("config")},
                             {"XDG_DATA_HOME", at("data")},
                             {"XDG_CACHE_HOME", at("cache")},
                             {"XDG_RUNTIME_DIR", at("runtime")},
                             {"PATH", at("bin") + u':' + qEnvironmentVariable("PATH")},
                             {"TZ", QStringLiteral("TST%1").arg(QDateTime::currentDateTimeUtc().time().hour() - 13)}};
        for (const auto& [name, value] : ours) environment.insert(QLatin1String(name), value);
        return environment;
    }

 private:
    static constexpr char kPreferences[] = "config/glimmet/preferences";
};

/// The program as the user runs it. Ends, by its own id, with this object.
class Glimmet {
 public:
    /// Starts it on the session's display, if there is one. It has written nothing yet; the lines that it will write
    /// are kept in its home.
    Glimmet(const XSession* session, const Home& home, const QStringList& flags = {}, const Variables& variables = {})
        : session_(session), home_(home) {
        QProcessEnvironment environment = home.environment();
        if (session) environment.insert(QStringLiteral("DISPLAY"), QString::fromLatin1(session->display()));
        for (const auto& [name, value] : variables) environment.insert(QLatin1String(name), value);
        process_.setProcessEnvironment(environment);
        process_.setStandardErrorFile(QString::fromUtf8(home.path("errors")));
        process_.setStandardOutputFile(QString::fromUtf8(home.path("output")));
        process_.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
        process_.start(besideTheTest("glimmet"), flags);
        EXPECT_TRUE(process_.waitForStarted());
    }
    ~Glimmet() {
        if (!running()) return;
        terminate();
        if (process_.waitForFinished(3000)) return;
        ADD_FAILURE() << "it does not end when it is told to";
        kill();
    }

    /// Whether the start-up line came and, on a session, the panel is on the screen.
    [[nodiscard]] testing::AssertionResult started() {
        const auto up = [&] { return !errors("glimmet: notch=").isEmpty() && (!session_ || panel()); };
        const auto result = waitFor([&] { return up() || !running(); }, 10);
        if (result && up()) return result;
        return testing::AssertionFailure() << "it did not start; it wrote: " << errors().join(u'\n').toStdString();
    }
    /// Whether it ends by itself and in order.
    [[nodiscard]] testing::AssertionResult ends() {
        const auto result = waitFor([&] { return !running(); });
        if (!result || (process_.exitStatus() == QProcess::NormalExit && process_.exitCode() == 0)) return result;
        return testing::AssertionFailure() << "it ended with " << process_.exitCode();
    }
    /// The whole lines so far on standard error, which begin with `prefix`, and on standard output.
    QStringList errors(const char* prefix = "") const {
        QStringList found = lines("errors");
        found.removeIf([&](const QString& line) { return !line.startsWith(QString::fromUtf8(prefix)); });
        return found;
    }
    QStringList output() const { return lines("output"); }

    bool running() { return process_.state() != QProcess::NotRunning && !process_.waitForFinished(0); }
    qint64 pid() const { return process_.processId(); }
    void terminate() { process_.terminate(); }
    /// Gives it no chance to tidy up.
    void kill() {
        process_.kill();
        process_.waitForFinished(3000);
    }

    /// Its window; 0 until it is there.
    xcb_window_t panel() const {
        for (const xcb_window_t window : windows()) {
            if (isPanel(session_->client().frameOf(window))) return window;
        }
        return XCB_NONE;
    }
    /// The panel in it.
    QRect panelFrame() const { return session_->client().frameOf(panel()).adjusted(kOverdraw, 0, -kOverdraw, 0); }
    /// Where the window takes the pointer, in its own coordinates.
    QRegion inputRegion() const {
        const auto cookie = xcb_shape_get_rectangles(session_->xcb(), panel(), XCB_SHAPE_SK_INPUT);
        const auto reply = owned(xcb_shape_get_rectangles_reply(session_->xcb(), cookie, nullptr));
        QRegion region;
        if (!reply) return region;
        const xcb_rectangle_t* first = xcb_shape_get_rectangles_rectangles(reply.get());
        for (int i = 0; i < xcb_shape_get_rectangles_rectangles_length(reply.get()); ++i)
            region += QRect(first[i].x, first[i].y, first[i].width, first[i].height);
        return region;
    }
    /// Its visible windows other than the panel, on the screen.
    QList<QRect> menus() const {
        QList<QRect> found;
        for (const xcb_window_t window : windows()) found.append(session_->client().frameOf(window));
        found.removeIf(isPanel);
        return found;
    }

 private:
    static constexpr int kOverdraw = 52;  // that the window has on both sides of the panel

    /// The panel's window, which hangs lower while its shelf has many rows.
    static bool isPanel(const QRect& frame) {
        return frame.width() == 360 + 2 * kOverdraw && frame.height() >= 230 && frame.top() == 0;
    }
    QStringList lines(const char* stream) const {
        QStringList lines = QString::fromUtf8(home_.read(stream)).split(u'\n');
        lines.removeLast();  // empty, or not whole yet
        return lines;
    }
    QList<xcb_window_t> windows() const {
        // One that has ended has no process id, as windows of programs that tell none.
        if (pid() == 0) return {};
        QList<xcb_window_t> found = session_->stacking();
        found.removeIf([&](xcb_window_t window) {
            return session_->client().value(window, "_NET_WM_PID") != pid() || !session_->client().visible(window);
        });
        return found;
    }

    const XSession* session_;
    const Home& home_;
    QProcess process_;
};
