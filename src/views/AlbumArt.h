#pragma once

#include <QImage>
#include <optional>

#include "motion/Animated.h"
#include "views/DisplayList.h"

/// The cover of the current track, or a note where there is none. Main thread only.
class AlbumArt {
 public:
    static constexpr double kSide = 22;  ///< points

    explicit AlbumArt(Animations& animations) : presence_(animations, 0, 0.002) {}

    /// A new image fades in with `how`.
    void show(const std::optional<QImage>& image, const std::optional<Animation>& how, double now);
    /// Adds it around the origin.
    void compose(DisplayList& list, double now) const;

 private:
    QImage image_;
    Animated<double> presence_;  // of the image
};
