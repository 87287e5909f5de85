#pragma once

#include <QList>
#include <QString>
#include <QUrl>
#include <vector>

#include "creature/NotchModel.h"
#include "shelf/ChewJobs.h"
#include "shelf/Chewer.h"
#include "shelf/ItemReferences.h"

class FileReferences;
class Pasteboard;
class Preferences;

/// What the shelf needs of the desktop. All of it must outlive the shelf.
struct ShelfPorts {
    Clock& clock;
    MainLoop& loop;
    Preferences& preferences;
    FileReferences& files;
    Worker& worker;
    BackgroundQueue& jobs;  ///< where the worker is waited for
    Pasteboard& pasteboard;
    /// Where the user's programs keep their data; files that were dropped as data go below it.
    QString dataFolder;
};

/// What the creature holds: files, links, notes and timers. Each change of the model's lists is saved, once the
/// preferences have been read, and so is whether the creature is hidden with them. Main thread only; the model must
/// outlive it.
class Shelf {
 public:
    Shelf(NotchModel& model, const ShelfPorts& ports);

    /// Holds the stored files that still exist, as older than what is held already, when their disks have answered.
    void loadShelf();
    /// Holds the stored bites and timers, as older than what is held already, and hides the creature if it was hidden.
    void loadHeld();

    /// Holds these files instead of all others, stored ones that are still looked for included.
    void replaceItems(const QList<QUrl>& files);
    /// Holds what is not held yet, pushing out the oldest beyond the limit. Returns how many were new.
    int addItems(const QList<QUrl>& files);
    int addBites(const QList<Bite>& bites);
    void addTimer(double length);  ///< minutes
    void removeItem(const QUrl& file);
    void removeBite(const Bite& bite);
    void removeTimer(const HeldTimer& timer);
    void clearDoneTimers();
    /// Marks the timers that have come due; true if one rang in this call.
    bool tickTimers();

    /// Puts text on the clipboard, which is a pleasure.
    void copy(const QString& text);
    /// Converts a held image in the background and holds the result; nothing while another job is under way.
    void chew(const QUrl& file, Chewer::Mode mode);
    /// Reads the text out of a held image or PDF in the background, puts it on the clipboard and holds its beginning as
    /// a note; nothing while another job is under way.
    void readText(const QUrl& file);

    /// Where files that were dropped as data are written. Whoever writes there makes it, away from the main thread.
    QUrl droppedFolder() const;

 private:
    void loadTimers();
    void saveItems();
    void storeReferences();
    void saveBites();
    void saveTimers();
    void saveHidden();

    NotchModel& model_;
    ShelfPorts ports_;
    ItemReferences references_;
    QList<HeldTimer> surplusTimers_;  // stored ones beyond what can be held: they stay stored
    Chewer chewer_;
    ChewJobs chewJobs_;
    std::vector<Subscription> saves_;
};
