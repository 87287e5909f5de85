#pragma once

#include <QImage>
#include <QList>
#include <QPointF>
#include <QSizeF>
#include <QString>
#include <QUrl>
#include <optional>

#include "creature/Bite.h"
#include "creature/HeldTimer.h"
#include "creature/Published.h"
#include "creature/Sky.h"
#include "creature/Toy.h"
#include "platform/Clock.h"

/// The curve for most changes that the user causes: opening, hiding, picking a toy.
inline Animation commonSpring() {
    return Animation::interpolatingSpring(1, 220, 18, 0);
}

/// Everything the creature knows: its mood, the pointer, the shelf, and what the watchers report. Plain data: sensors
/// and features write it, views observe it, and it does nothing of its own accord. Lengths are in points; screen
/// coordinates have y growing upwards. Main thread only.
class NotchModel : public ObservableObject {
 public:
    Published<std::optional<QImage>> artwork{*this, std::nullopt};  ///< cover of the current track
    Published<Toy> toy{*this, Toy::critter};
    Published<QPointF> cursor{*this, {}};    ///< where the eyes look: the pointer, in screen coordinates
    Published<bool> hovering{*this, false};  ///< the pointer is in the hover zone
    Published<bool> dragging{*this, false};  ///< the creature is being dragged inside the view
    Published<QSizeF> dragOffset{*this, {0, 0}};
    Published<bool> asleep{*this, false};
    Published<int> boopCount{*this, 0};
    Published<int> startleCount{*this, 0};
    Published<int> glanceCount{*this, 0};
    Published<double> battery{*this, 1.0};  ///< fraction, 0 to 1
    Published<bool> charging{*this, false};
    Published<bool> yawning{*this, false};
    Published<int> worryCount{*this, 0};
    Published<QList<QUrl>> items{*this, {}};     ///< held files, newest last
    Published<bool> dropTargeted{*this, false};  ///< a drag is over the panel
    Published<bool> dragNear{*this, false};      ///< a usable drag is close to the notch
    Published<int> swallowCount{*this, 0};
    Published<bool> shelfExpanded{*this, false};
    Published<QList<Bite>> bites{*this, {}};
    Published<QList<HeldTimer>> timers{*this, {}};
    Published<bool> capsOn{*this, false};
    Published<bool> offline{*this, false};
    Published<int> lookAroundCount{*this, 0};
    Published<bool> diskFull{*this, false};
    Published<int> stretchCount{*this, 0};
    Published<Date> quietUntil{*this, Date::distantPast()};
    Published<double> slideX{*this, 0.0};   ///< how far the panel is pushed aside
    Published<bool> sliding{*this, false};  ///< the user is pushing it
    Published<bool> hidden{*this, false};
    Published<bool> downloading{*this, false};
    Published<std::optional<QString>> eventWhisper{*this, std::nullopt};
    Published<std::optional<QString>> updateAvailable{*this, std::nullopt};  ///< the newer version
    Published<bool> chewing{*this, false};
    Published<bool> musicPlaying{*this, false};
    Published<bool> musicPaused{*this, false};  ///< the track that is shown has paused, and can be resumed
    Published<std::optional<QString>> musicTrack{*this, std::nullopt};
    Published<Sky> sky{*this, Sky::clearDay};
    Published<std::optional<double>> tempC{*this, std::nullopt};  ///< degrees Celsius
    Published<int> agentsWorking{*this, 0};
    Published<QString> agentProjects{*this, {}};
    Published<bool> needsYou{*this, false};  ///< an agent is waiting for the user
    Published<int> spawnCount{*this, 0};
    Published<bool> cameraInUse{*this, false};
    Published<bool> micInUse{*this, false};
    Published<bool> screenLocked{*this, false};  ///< hides everything that is held

    static constexpr double kDefaultNotchWidth = 185, kDefaultNotchHeight = 32;

    std::optional<QString> blockedTerminal;  ///< display name of the waiting agent's terminal
    QSizeF notchSize{kDefaultNotchWidth, kDefaultNotchHeight};
    double centerX = 0;       ///< middle of the notch, screen coordinates
    double screenTop = 0;     ///< top edge of the notch's screen, screen coordinates
    double lastActivity = 0;  ///< when the creature last noticed the user, by Clock::uptime()
    /// Set by command-line flags: sensors then leave the battery, the charger and the disk alone (`batteryPinned`), or
    /// the camera and the microphone (`privacyPinned`).
    bool batteryPinned = false, privacyPinned = false;

    bool attending() const { return hovering || dragging || dragNear; }
    bool hasHeld() const { return heldCount() > 0; }
    /// How many held things may be shown: none while the screen is locked.
    int heldCount() const { return screenLocked ? 0 : int(items->size() + bites->size() + timers->size()); }
    bool timerRung() const;
    /// The whispered meeting; none while the screen is locked.
    std::optional<QString> whisper() const { return screenLocked ? std::nullopt : eventWhisper.get(); }
    /// Tired: the battery is low and not charging, or it is late at night.
    bool isSleepy(const Clock& clock) const;
    /// The user asked for quiet, and the time is not up yet.
    bool isQuiet(const Clock& clock) const { return clock.now() < quietUntil; }

    static constexpr int kChipsPerRow = 5;  ///< of the unfolded shelf
    static constexpr double kChipRow = 56;  ///< height of such a row
    /// Number of rows that everything held takes.
    int chipRows() const { return (heldCount() + kChipsPerRow - 1) / kChipsPerRow; }
    /// Size that the notch shape should have now.
    double shapeWidth() const;
    double shapeHeight() const;

    /// Records user activity at `now` (Clock::uptime()); wakes a dozing creature.
    void markActivity(double now);
};
