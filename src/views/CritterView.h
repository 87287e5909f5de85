#pragma once

#include <functional>
#include <optional>

#include "creature/NotchModel.h"
#include "motion/Animated.h"
#include "views/DelayedCalls.h"
#include "views/DisplayList.h"
#include "views/Eye.h"
#include "views/Mouth.h"
#include "views/ShelfArea.h"
#include "views/StatusGlyph.h"

/// The creature's face and the rows below it. It has its own short-lived states, started by the model's counters, and
/// lives while the creature is shown. It is drawn below the origin of its frame of reference, the top centre of the
/// panel. Main thread only; the references must outlive it.
class CritterView {
 public:
    /// `changed` is called whenever a state of the face's own has changed; the picture has then to be drawn again.
    CritterView(NotchModel& model, const ChipPorts& ports, Clock& clock, MainLoop& loop, std::function<void()> changed);

    /// Stops the face's clocks; it may go on to fade out.
    void disappear();

    /// Takes over the present state of the model: what differs moves with `how`, or with its own curve where it has
    /// one.
    void update(const std::optional<Animation>& how);

    /// When the picture changes by itself: Clock::uptime(), or infinity.
    double nextFrame() const;
    void compose(DisplayList& list) const;

    /// The shelf below the face, and the height at which it begins.
    ShelfArea& shelf() { return shelf_; }
    double shelfTop() const;

 private:
    /// It shuts its mouth over what it was given, and then gulps it down.
    enum class Swallow { none, closing, gulping };
    /// Values whose changes move the eyes with curves of their own.
    struct EyeCauses {
        bool camera = false, blink = false, sleepy = false, yawning = false, worried = false, glancing = false;
        bool gulping = false;
    };

    void react();
    void blink();
    void startle();
    void worry();
    void swallow();
    void gulp();
    void setSwallow(Swallow step);
    void glanceDown();
    void lookAround();
    void stretch();

    void aimLayout(const std::optional<Animation>& how, double now);
    void aimEyes(const std::optional<Animation>& how, double now);
    void aimGlyph(const std::optional<Animation>& how, double now);
    std::optional<Animation> eyeCurve(const std::optional<Animation>& how);
    void setBadge(int count);
    bool eyesShut() const;
    double lidClosure() const;
    QPointF gaze(double side) const;
    Mouth::State mouthState() const;

    /// How the whole face is moved by what happens to it.
    QTransform faceTransform(double now) const;
    void composeFace(DisplayList& list, double now) const;
    void composeMouth(DisplayList& list, double now) const;
    void composeCheeks(DisplayList& list, double now) const;
    void composeSleep(DisplayList& list, double now) const;
    void composeBadge(DisplayList& list, double now) const;
    void composeGlyph(DisplayList& list, double now) const;

    NotchModel& m_;
    Clock& clock_;
    MainLoop& loop_;
    std::function<void()> changed_;

    bool blink_ = false;
    bool startled_ = false;
    bool worried_ = false;
    bool glancingDown_ = false;
    int lookPhase_ = 0;  // 0 centre, 1 left, 2 right
    bool stretchGlyph_ = false;
    Swallow swallow_ = Swallow::none;
    bool fed_ = false;  // the mouth stays shut until the drag that brought something is over
    TimerHandle blinkTimer_, swallowStep_;
    DelayedCalls delays_;

    int seenGlances_, seenStartles_, seenWorries_, seenSpawns_, seenLookArounds_, seenStretches_, seenSwallows_;
    bool seenCharging_;
    EyeCauses eyeCauses_;

    Eye leftEye_, rightEye_;
    Mouth mouth_;
    ShelfArea shelf_;
    StatusGlyph glyph_;
    Animated<double> padding_{36}, eyeSize_{17}, spacing_{13};
    Animated<double> startle_{0, 0.001};  // 0 at ease, 1 startled
    Animated<double> dip_{0, 0.002};      // 1 while it gulps
    Animated<double> cheeks_{0, 0.002}, cheekSize_{9}, cheekGap_{46}, cheekDrop_{5};
    Animated<double> sleep_{0, 0.002}, arcWidth_{16}, arcHeight_{7}, arcDroop_{6}, zzz_{0, 0.002};
    Animated<double> badge_{0, 0.002}, glyphOpacity_{0, 0.002}, width_{185};
    int badgeCount_ = 0;
    double badgeWidth_ = 0;
};
