#pragma once

#include <memory>

#include "platform/BackgroundJobs.h"
#include "platform/FileIcons.h"

/// Pictures from the desktop's thumbnails and icon theme. Never decodes the user's own files; everything slow runs on
/// the queue. Uses the icon theme at the time of the first call. Both parameters must outlive the object, and `loop`
/// the queue.
class DesktopIcons : public FileIcons {
 public:
    DesktopIcons(BackgroundQueue& queue, MainLoop& loop);
    ~DesktopIcons() override;

    /// `done` is never called after this object is destroyed.
    void find(const QUrl& file, int pixels, std::function<void(const QImage&)> done) override;

 private:
    struct LazyTheme;

    std::shared_ptr<LazyTheme> theme_;
    BackgroundJobs jobs_;
};
