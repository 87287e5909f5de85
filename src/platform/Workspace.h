#pragma once

#include <QString>
#include <QUrl>
#include <functional>

/// The other programs of the desktop. Main thread only; nothing here waits for another program.
class Workspace {
 public:
    virtual ~Workspace() = default;

    /// Starts reporting through onApplicationActivated.
    virtual void start() = 0;

    /// Brings the running application with this display name to the front. If there is none, brings the user's default
    /// terminal to the front or starts it; does nothing if there is no terminal either.
    virtual void activateOrOpenTerminal(const QString& displayName) = 0;
    /// Opens `url`, a file or a link, with the user's default program for it.
    virtual void open(const QUrl& url) = 0;
    /// Shows `file` selected in the user's file manager; if that is not possible, opens its folder.
    virtual void reveal(const QUrl& file) = 0;
    /// Opens the desktop's accessibility settings; does nothing if it has none.
    virtual void openAccessibilitySettings() = 0;

    /// Another application became active. Not called for a change of window within one application.
    std::function<void()> onApplicationActivated;
};
