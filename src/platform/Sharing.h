#pragma once

#include <QList>
#include <QString>
#include <QUrl>
#include <functional>

/// One way to share something.
struct ShareOffer {
    QString title;
    std::function<void()> choose;  ///< returns at once
    QList<ShareOffer> choices;     ///< a submenu instead of `choose`: devices or programs
};

/// The desktop's ways to share things: mail, devices, other programs. Main thread only.
class Sharing {
 public:
    virtual ~Sharing() = default;

    /// Finds the ways to share `thing`, a file or a link, and calls `found` once, later. Only what is installed and
    /// reachable now is included.
    virtual void offers(const QUrl& thing, std::function<void(const QList<ShareOffer>&)> found) = 0;
};
