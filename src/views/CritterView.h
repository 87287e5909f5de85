#pragma once

#include "views/Badge.h"
#include "views/Eye.h"
#include "views/Glyph.h"
#include "views/Mouth.h"
#include "views/MusicRow.h"
#include "views/Reactions.h"
#include "views/ShelfArea.h"
#include "views/SleepingEyes.h"
#include "views/View.h"

/// The creature's face and the rows below it.
class CritterView : public View {
 public:
    explicit CritterView(const ViewContext& context);

    void update(const std::optional<Animation>& how) override;
    void disappear() override { reactions_.stop(); }
    void compose(DisplayList& list, const QRectF& body) const override;
    double nextFrame() const override;
    Hit hit(const QPointF& point, Hit below) override;
    void pointerMoved(const std::optional<QPointF>& point) override;

 private:
    void aimLayout(const std::optional<Animation>& how, double now);
    void aimCheeks(const std::optional<Animation>& how, double now);
    void aimEyes(const std::optional<Animation>& how, double now);
    std::optional<Animation> eyeCurve(const std::optional<Animation>& how);
    double lidClosure() const;
    /// The offset of the pupil on `side`, -1 for left or 1 for right.
    QPointF gaze(double side) const;
    Mouth::State mouthState() const;
    const FaceGeometry& face() const { return model_.attending() ? FaceGeometry::open : FaceGeometry::resting; }
    /// `point` relative to what hangs `gap` points below the eyes.
    QPointF belowEyes(const QPointF& point, double gap) const;

    /// Moves the whole face when it is startled or gulps.
    QTransform faceTransform(double now) const;
    void composeCheeks(DisplayList& list, double now) const;
    void composeEyes(DisplayList& list, double now) const;

    const ViewContext& context_;
    NotchModel& model_;
    Animations& animations_;

    Reactions reactions_;
    const Reactions::State& state_;
    bool seenCharging_;
    std::array<bool, 7> eyeCauses_{};  // states whose changes move the eyes with their own curves

    Eye leftEye_{animations_}, rightEye_{animations_};
    SleepingEyes sleepingEyes_{animations_};
    Mouth mouth_{animations_};
    Badge badge_{animations_};
    Glyph glyph_{animations_};
    ShelfArea shelf_;
    MusicRow music_;
    Animated<double> top_{animations_, 0}, eyeSize_{animations_, 0}, spacing_{animations_, 0};
    Animated<double> startle_{animations_, 0, 0.001};  // 0 at ease, 1 startled
    Animated<double> dip_{animations_, 0, 0.002};      // 1 while it gulps
    Animated<double> cheeks_{animations_, 0, 0.002};
    Animated<double> cheekSize_{animations_, 0}, cheekGap_{animations_, 0}, cheekDrop_{animations_, 0};
    Animated<double> sleep_{animations_, 0, 0.002};
};
