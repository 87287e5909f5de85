#pragma once

#include <QImage>
#include <QList>
#include <QPointF>
#include <QSizeF>
#include <QString>
#include <QUrl>
#include <functional>
#include <memory>
#include <optional>

#include "creature/Published.h"
#include "creature/Sky.h"
#include "creature/Toy.h"
#include "platform/Clock.h"
#include "platform/MainLoop.h"
#include "shelf/Bite.h"
#include "shelf/Chewer.h"
#include "shelf/HeldTimer.h"
#include "shelf/ItemReferences.h"

class BackgroundQueue;
class FileReferences;
class Pasteboard;
class Preferences;

/// What the shelf needs of the desktop. All of it must outlive the model.
struct ShelfPorts {
    Preferences& preferences;
    FileReferences& files;
    Worker& worker;
    BackgroundQueue& jobs;  ///< where the worker is waited for
    Pasteboard& pasteboard;
    /// Where the user's programs keep their data; files that were dropped as data go below it.
    QString dataFolder;
};

/// The curve of most changes that the user causes: opening, hiding, picking a toy.
inline Animation commonSpring() {
    return Animation::interpolatingSpring(1, 220, 18, 0);
}

/// All that the creature knows: its mood, the pointer, the shelf, and what the watchers report. Sensors write it, views
/// observe it. Lengths are points; screen coordinates have y growing upwards. Main thread only.
///
/// The ports must outlive the model.
class NotchModel : public ObservableObject {
 public:
    NotchModel(Clock& clock, MainLoop& loop, const ShelfPorts& shelf);

    Published<std::optional<QImage>> artwork{*this, std::nullopt};  ///< cover of the current track
    Published<Toy> toy{*this, Toy::critter};
    Published<QPointF> cursor{*this, {}};    ///< pointer as last shown to the eyes, screen coordinates
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
    Published<QList<QUrl>> items{*this, {}, [this] { saveItems(); }};  ///< held files, newest last
    Published<bool> dropTargeted{*this, false};                        ///< a drag is over the panel
    Published<bool> dragNear{*this, false};                            ///< a usable drag is close to the notch
    Published<int> swallowCount{*this, 0};
    Published<bool> shelfExpanded{*this, false};
    Published<QList<Bite>> bites{*this, {}, [this] { saveBites(); }};
    Published<QList<HeldTimer>> timers{*this, {}, [this] { saveTimers(); }};
    Published<bool> capsOn{*this, false};
    Published<bool> offline{*this, false};
    Published<int> lookAroundCount{*this, 0};
    Published<bool> diskFull{*this, false};
    Published<int> stretchCount{*this, 0};
    Published<Date> quietUntil{*this, Date::distantPast()};
    Published<double> slideX{*this, 0.0};   ///< how far the panel is pushed aside
    Published<bool> sliding{*this, false};  ///< the user pushes it right now
    Published<bool> hidden{*this, false, [this] { saveHidden(); }};
    Published<bool> downloading{*this, false};
    Published<std::optional<QString>> eventWhisper{*this, std::nullopt};
    Published<std::optional<QString>> updateAvailable{*this, std::nullopt};  ///< the newer version
    Published<bool> chewing{*this, false};
    Published<bool> musicPlaying{*this, false};
    Published<std::optional<QString>> musicTrack{*this, std::nullopt};
    Published<Sky> sky{*this, Sky::clearDay};
    Published<std::optional<double>> tempC{*this, std::nullopt};  ///< degrees Celsius
    Published<int> agentsWorking{*this, 0};
    Published<QString> agentProjects{*this, {}};
    Published<bool> needsYou{*this, false};  ///< an agent waits for the user
    Published<int> spawnCount{*this, 0};
    Published<bool> cameraInUse{*this, false};
    Published<bool> micInUse{*this, false};
    Published<bool> screenLocked{*this, false};  ///< nothing that is held may be seen

    /// Called with a command word by the music buttons.
    std::function<void(const QString&)> onMusicCommand;
    /// Brings the terminal of the waiting agent forward; called by notchTapped().
    std::function<void()> onFocusBlockedTerminal;
    std::optional<QString> blockedTerminal;  ///< display name of the terminal that holds the waiting agent
    QSizeF notchSize{185, 32};
    double centerX = 0;    ///< middle of the notch, screen coordinates
    double screenTop = 0;  ///< top edge of the notch's screen, screen coordinates
    double lastActivity;   ///< when the user last did something that the creature noticed, by Clock::uptime()

    bool attending() const { return hovering || dragging || dragNear; }
    bool hasHeld() const { return heldCount() > 0; }
    /// What may be seen of it: nothing while the screen is locked.
    int heldCount() const { return screenLocked ? 0 : int(items->size() + bites->size() + timers->size()); }
    bool timerRung() const;
    /// The whispered meeting, if it may be seen.
    std::optional<QString> whisper() const { return screenLocked ? std::nullopt : eventWhisper.get(); }
    /// Tired: the battery is low and not charging, or it is late at night.
    bool isSleepy() const;
    /// The user asked for quiet and the time is not over.
    bool quiet() const;
    static constexpr int kChipsPerRow = 5;  ///< of the unfolded shelf
    static constexpr double kChipRow = 56;  ///< height of such a row
    /// Rows that it takes to show all that is held.
    int chipRows() const { return (heldCount() + kChipsPerRow - 1) / kChipsPerRow; }
    /// Size that the notch shape should have now.
    double shapeWidth() const;
    double shapeHeight() const;

    /// Notes that the user is there; wakes a dozing creature.
    void markActivity();
    /// Yawns, unless something speaks against it.
    void yawn();
    /// The reaction to a tap on the notch.
    void notchTapped();
    void pickToy(Toy choice);

    // The shelf. Each assignment to a stored collection saves it, once the preferences have been read.
    /// Holds the stored files that still exist, as older than what is held already, when their disks have answered.
    void loadShelf();
    /// Holds the stored bites and timers, as older than what is held already, and hides if it was hidden.
    void loadHeld();
    /// Holds these files instead of all others, stored ones that are still looked for included.
    void replaceItems(const QList<QUrl>& files);
    /// Holds what is not held yet, pushing out the oldest beyond the limit. Returns how many were new.
    int addItems(const QList<QUrl>& files);
    int addBites(const QList<Bite>& newBites);
    void addTimer(double length);  ///< minutes
    /// Marks the timers that have come due; true if one rang in this call.
    bool tickTimers();
    void removeItem(const QUrl& file);
    void removeBite(const Bite& bite);
    void removeTimer(const HeldTimer& timer);
    void clearDoneTimers();
    /// Where files that were dropped as data are written. Whoever writes there makes it, away from the main thread.
    QUrl droppedFolder() const;
    /// Converts a held image in the background and holds the result; nothing while another job is under way.
    void chew(const QUrl& file, Chewer::Mode mode);
    /// Reads the text out of a held image or PDF in the background, puts it on the clipboard and holds its beginning as
    /// a note; nothing while another job is under way.
    void readText(const QUrl& file);

 private:
    void munch(std::function<std::function<bool()>()> job);
    void saveItems();
    void storeReferences();
    void loadTimers();
    void saveBites();
    void saveTimers();
    void saveHidden();

    Clock& clock_;
    MainLoop& loop_;
    ShelfPorts shelf_;
    ItemReferences references_;
    QList<HeldTimer> surplusTimers_;  // stored ones beyond what can be held: they stay stored
    Chewer chewer_;
    TimerHandle yawnEnd_;
    TimerHandle chewEnd_;
    std::shared_ptr<NotchModel*> self_;  // for what comes back from the background
};
