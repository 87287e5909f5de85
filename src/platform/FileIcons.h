#pragma once

#include <QImage>
#include <QUrl>
#include <functional>

/// The pictures by which the desktop shows files. Main thread only.
class FileIcons {
 public:
    virtual ~FileIcons() = default;

    /// Looks for the picture of `file`, at best `pixels` wide and high: a thumbnail that the desktop keeps, else the
    /// icon of its kind of file. `done` is called once, later, with a null image if there is neither.
    virtual void find(const QUrl& file, int pixels, std::function<void(const QImage&)> done) = 0;
};
