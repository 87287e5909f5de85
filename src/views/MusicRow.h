#pragma once

#include <array>

#include "views/AlbumArt.h"
#include "views/MusicBtn.h"
#include "views/View.h"

/// What is playing, below the open face: cover, track and three buttons. The origin is the top centre. Main thread
/// only.
class MusicRow {
 public:
    explicit MusicRow(const ViewContext& context);

    void update(const std::optional<Animation>& how);
    void compose(DisplayList& list) const;
    /// See View.
    Hit hit(const QPointF& point, Hit below);
    void pointerMoved(const std::optional<QPointF>& point);

 private:
    bool wanted() const;
    double width() const;
    void hover();

    const ViewContext& context_;
    NotchModel& model_;
    AlbumArt art_{context_.animations};
    QString track_;  // as it is shown
    bool paused_ = false;
    std::array<MusicBtn, 3> buttons_;
    std::optional<QPointF> pointer_;
    Animated<double> presence_{context_.animations, 0, 0.002};
};
