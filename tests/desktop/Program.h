#pragma once

#include <QRegion>
#include <optional>

#include "support/TestFolder.h"
#include "support/XSession.h"

/// The folders in which one user's programs keep what they know, all of them temporary. It outlives the programs that
/// are started in it, so that a second one finds what the first one left.
class Home : public TestFolder {
 public:
    Home();
    QByteArray preferences() const { return read(kPreferences); }
    /// The line that stores `key`.
    QByteArray stored(const char* key) const;
    /// Waits until what is stored for `key` contains `what`.
    testing::AssertionResult holds(const char* key, const QByteArray& what) const;
    /// Lays them down before the program starts.
    void setPreferences(const QByteArray& contents) const { write(kPreferences, contents); }
    /// Ours, with the folders put in, no display, and a time zone in which it is early afternoon: by night the creature
    /// is sleepy.
    QProcessEnvironment environment() const;

 private:
    static constexpr char kPreferences[] = "config/glimmet/preferences";
};

using Variables = QList<QPair<const char*, QString>>;

/// The program as the user runs it. Ends, by its own id, with this object.
class Glimmet {
 public:
    /// Starts it on the session's display, if there is one. It has written nothing yet; the lines that it will write
    /// are kept in `lines`, or else in its home.
    Glimmet(const XSession* session, const Home& home, const QStringList& flags = {}, const Variables& variables = {},
            const Home* lines = nullptr);
    ~Glimmet();

    /// Whether the start-up line came and, on a session, the panel is on the screen.
    [[nodiscard]] testing::AssertionResult started();
    /// Whether it ends by itself, with this code.
    [[nodiscard]] testing::AssertionResult ends(int code = 0);
    /// The whole lines so far on standard error, which begin with `prefix`, and on standard output.
    QStringList errors(const char* prefix = "") const;
    QStringList output() const { return lines("output"); }

    bool running();
    qint64 pid() const { return process_.processId(); }
    void terminate() { process_.terminate(); }
    /// Gives it no chance to tidy up.
    void kill();

    /// Its window; 0 until it is there.
    xcb_window_t panel() const;
    /// The panel in it.
    QRect panelFrame() const;
    /// Where the window takes the pointer, in its own coordinates.
    QRegion inputRegion() const;
    /// Its visible windows other than the panel, on the screen.
    QList<QRect> menus() const;

 private:
    QStringList lines(const char* stream) const;
    QList<xcb_window_t> windows() const;

    const XSession* session_;
    const Home& lines_;
    QProcess process_;
};
