#pragma once

#include <QList>
#include <QString>
#include <QUrl>
#include <functional>

/// One way of passing something on.
struct ShareOffer {
    QString title;
    std::function<void()> choose;  ///< returns at once
    QList<ShareOffer> choices;     ///< instead of `choose`: a further choice, of a device or a program
};

/// What this desktop offers for passing things on: mail, devices, other programs. Main thread only.
class Sharing {
 public:
    virtual ~Sharing() = default;

    /// Finds out what there is for `thing`, a file or a link, and calls `found` once, later. Only what is installed
    /// and reachable now is in the list.
    virtual void offers(const QUrl& thing, std::function<void(const QList<ShareOffer>&)> found) = 0;
};
