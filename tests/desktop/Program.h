#pragma once

#include <QProcess>
#include <QRegion>
#include <QStringList>
#include <QTemporaryDir>
#include <optional>

#include "support/XSession.h"

/// Where a window is; empty when it is gone.
QRect frameOf(const XSession& session, xcb_window_t window);
bool visible(const XSession& session, xcb_window_t window);

/// The folders in which one user's programs keep what they know, all of them temporary. It outlives the programs that
/// are started in it, so that a second one finds what the first one left.
class Home {
 public:
    Home();
    QString preferencesFile() const { return folder_.filePath(QStringLiteral("config/glimmet/preferences")); }
    QByteArray preferences() const;
    /// Lays a file down before the program starts.
    void setPreferences(const QByteArray& contents) const;
    /// Ours, with the folders put in, no display, and a time zone in which it is early afternoon: by night the creature
    /// is sleepy.
    QProcessEnvironment environment() const;
    QString filePath(const QString& name) const { return folder_.filePath(name); }

 private:
    QTemporaryDir folder_;
};

/// The program as the user runs it. Ends, by its own id, with this object.
class Glimmet {
 public:
    /// Starts it on the session's display. It has written nothing yet.
    Glimmet(const XSession& session, const Home& home, const QStringList& flags = {});
    /// The same in an environment that has been changed.
    Glimmet(const XSession& session, const QProcessEnvironment& environment, const Home& home,
            const QStringList& flags);
    /// Starts it without a session, in the given environment.
    Glimmet(const QProcessEnvironment& environment, const Home& home, const QStringList& flags = {});
    ~Glimmet();
    Glimmet(const Glimmet&) = delete;
    Glimmet& operator=(const Glimmet&) = delete;

    /// Whether the start-up line came and, on a session, the panel is on the screen.
    [[nodiscard]] testing::AssertionResult started();
    /// The whole lines so far on standard error and standard output.
    QStringList errors() const { return lines(errorFile_); }
    QStringList output() const { return lines(outputFile_); }
    /// The lines on standard error that begin with `prefix`.
    QStringList errors(const char* prefix) const;

    bool running();
    qint64 pid() const { return process_.processId(); }
    /// What it returned; absent while it runs and when a signal ended it.
    std::optional<int> exitCode();
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
    static QStringList lines(const QString& file);
    QList<xcb_window_t> windows() const;

    const XSession* session_ = nullptr;
    QString errorFile_, outputFile_;
    QProcess process_;
};
