#pragma once

#include <QImage>
#include <QUrl>
#include <functional>

/// The pictures that the desktop shows for files. Main thread only.
class FileIcons {
 public:
    virtual ~FileIcons() = default;

    /// Finds the picture of `file`, ideally `pixels` wide and high: its cached thumbnail, or else the icon of its type.
    /// `done` is called once, later, with a null image if there is neither.
    virtual void find(const QUrl& file, int pixels, std::function<void(const QImage&)> done) = 0;
};
