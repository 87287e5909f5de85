#pragma once

#include <QPointF>
#include <functional>

#include "creature/NotchModel.h"

class Sounds;

/// Makes the creature feel alive: turns pointer moves, application switches and the passage of time into changes of the
/// model. Main thread only; the model and the ports must outlive it.
class BehaviourEngine {
 public:
    /// `random` gives uniformly distributed numbers in [0, 1). `trace` receives the trace lines, without line ends.
    BehaviourEngine(NotchModel& model, Clock& clock, MainLoop& loop, Sounds& sounds, std::function<double()> random,
                    std::function<void(const QString&)> trace);

    /// Starts sliding the panel home after it was pushed aside. Runs from the start, even in demo mode.
    void watchSlides();

    void pointerMoved(QPointF pointer);
    void applicationActivated();
    /// A single tap on the notch.
    void notchTapped();
    /// A held timer has come due.
    void timerRang();
    /// Yawns, unless the creature is asleep, attending, quiet, or showing the weather.
    void yawn();
    /// To be called every 15 s: a tired creature yawns now and then.
    void yawnTick();
    /// To be called every 4 s: long work asks for a stretch, a forgotten creature dozes off.
    void lifeTick();

    /// Whether `pointer` is on the notch shape, wherever it has slid to, or within `margin` points of it.
    bool inHoverZone(QPointF pointer, double margin) const;
    /// Cancels a pending slide home, for when the panel was put home by other means.
    void cancelSlideHome();

    /// Called by a tap after a timer has rung: removes the timers that have.
    std::function<void()> clearDoneTimers;
    /// Called by a tap while an agent waits for the user: brings its terminal forward.
    std::function<void()> focusBlockedTerminal;

 private:
    void startleAt(QPointF pointer, double elapsed);
    void publishGaze(QPointF pointer, double now, bool hoverChanges);
    void setHovering(bool inside, QPointF pointer);
    void followStreak();
    void dozeOff();
    void slidingChanged(bool sliding);
    void slideHome();
    void stepHome(double from, double started);

    NotchModel& model_;
    Clock& clock_;
    MainLoop& loop_;
    Sounds& sounds_;
    std::function<double()> random_;
    std::function<void(const QString&)> trace_;

    // Times are Clock::uptime(): setting the wall clock must neither freeze the eyes nor keep the creature awake.
    QPointF lastCursor_;
    double lastMoveTime_;
    double lastGazePublish_;
    QPointF publishedCursor_;
    double activeStreakStart_;
    double lastStretch_;
    double nextYawn_;
    bool startleCooldown_ = false;

    TimerHandle cooldownEnd_;
    TimerHandle yawnEnd_;
    TimerHandle slideHomeTimer_;
    TimerHandle slideSteps_;
    Subscription slidingSubscription_;
};
