#pragma once

#include <QStringList>
#include <functional>

#include "app/CommandLineFlags.h"
#include "app/Commands.h"
#include "app/Diagnostics.h"
#include "app/NotchPanel.h"
#include "app/PanelPlacement.h"
#include "app/ScreenTest.h"
#include "app/ShelfSelfTest.h"
#include "creature/BehaviourEngine.h"
#include "creature/NotchModel.h"
#include "music/Artwork.h"
#include "music/MusicCommands.h"
#include "music/NowPlaying.h"
#include "platform/Alert.h"
#include "shelf/ChipActions.h"
#include "shelf/DropIntake.h"
#include "shelf/Shelf.h"
#include "views/RootView.h"
#include "watchers/AgentWatcher.h"
#include "watchers/CapsLock.h"

class BackgroundQueue;
class DragPasteboard;
class EventMonitors;
class FileIcons;
class Http;
class MediaKeys;
class PanelWindow;
class Pasteboard;
class Players;
class Preferences;
class ScreenLock;
class Screens;
class Sharing;
class Sounds;
class Workspace;

/// The creature's ports to the desktop. All of them must outlive the delegate.
struct Ports {
    Clock& clock;
    MainLoop& loop;
    Preferences& preferences;
    FileReferences& files;
    Screens& screens;
    PanelWindow& window;
    EventMonitors& monitors;
    ScreenLock& screenLock;
    Workspace& workspace;
    Sounds& sounds;
    DragPasteboard& dragPasteboard;
    Pasteboard& pasteboard;
    Sharing& sharing;
    FileIcons& icons;
    Players& players;
    MediaKeys& mediaKeys;
    Http& http;
    Worker& worker;
    BackgroundQueue& disk;    ///< writes files
    BackgroundQueue& jobs;    ///< waits for the worker, which may take a minute
    BackgroundQueue& covers;  ///< reads and decodes the covers of tracks
    /// Uniformly distributed in [0, 1).
    std::function<double()> random;
    /// Shows a menu at a point of the screen (y growing upwards) and returns at once.
    std::function<void(const QList<MenuItem>&, QPointF)> popUp;
    /// Closes that menu if it is still open.
    std::function<void()> closePopUp;
    /// Shows an alert and returns at once.
    std::function<void(Alert)> alert;
    /// Requests an orderly exit.
    std::function<void()> quit;
    /// The user's data directory.
    QString dataFolder;
};

/// Owns everything that lives as long as the program, and wires it. Main thread only.
class AppDelegate {
 public:
    /// `arguments` are those of the process, with its name.
    AppDelegate(const Ports& ports, const QStringList& arguments);

    enum class Launch { running, noScreen, menuDumped };
    /// Starts the parts in the order of their dependencies. Run the main loop only after `running`.
    Launch launch();

    NotchModel& model() { return model_; }

 private:
    void connect();
    void watchPointer();
    ViewPorts viewPorts();
    QList<Switch> switches();
    void startSensors();
    void watchScrolling();
    void startTicks();
    void vitalsTick();
    void lifeTick();
    void lockChanged();
    void popUp(const QList<MenuItem>& items, QPointF at);
    void rightMouseDown(QPointF pointer);
    void dumpMenu();
    void logStart() const;

    Ports ports_;
    QStringList arguments_;
    Diagnostics diagnostics_;
    NotchModel model_;
    Shelf shelf_;
    DropIntake drops_;
    ChipActions chipActions_;
    RootView root_;
    NotchPanel panel_;
    BehaviourEngine behaviour_;
    PanelPlacement placement_;
    Commands commands_;
    CapsLock capsLock_;
    AgentWatcher agents_;
    Artwork artwork_;
    NowPlaying nowPlaying_;
    MusicCommands musicCommands_;
    CommandLineFlags flags_;
    ScreenTest screenTest_;
    ShelfSelfTest shelfTest_;
    TimerHandle vitalsTimer_, lifeTimer_;
    Subscription scrolling_;
    bool demo_ = false;  // flags set the creature's state; the sensors stay off
};
