#pragma once

#include <memory>

#include "platform/BackgroundJobs.h"
#include "platform/FileIcons.h"

/// Pictures from the desktop's thumbnails and icon theme. No file of the user's own is decoded, and everything slow is
/// done on the queue. The theme is the one at the time of the first call. Both parameters must outlive the object, and
/// `loop` the queue.
class DesktopIcons : public FileIcons {
 public:
    DesktopIcons(BackgroundQueue& queue, MainLoop& loop);
    ~DesktopIcons() override;

    /// After the end of this object `done` is not called any more.
    void find(const QUrl& file, int pixels, std::function<void(const QImage&)> done) override;

 private:
    struct LazyTheme;

    std::shared_ptr<LazyTheme> theme_;
    BackgroundJobs jobs_;
};
