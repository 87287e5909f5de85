#pragma once

#include <QString>
#include <QUrl>
#include <functional>

/// The other programs of the desktop. Main thread only; nothing here waits for another program.
class Workspace {
 public:
    virtual ~Workspace() = default;

    /// Begins to report through onApplicationActivated.
    virtual void start() = 0;

    /// Brings the running application with this display name to the front; if none runs under it, the user's default
    /// terminal is brought to the front or started. Nothing happens where there is neither.
    virtual void activateOrOpenTerminal(const QString& displayName) = 0;
    /// Opens `url`, a file or a link, with the user's default program for it.
    virtual void open(const QUrl& url) = 0;
    /// Shows `file` selected in the user's file manager; where that cannot be done, opens its folder.
    virtual void reveal(const QUrl& file) = 0;

    /// Another application became the active one; a change of window within one application is not reported.
    std::function<void()> onApplicationActivated;
};
