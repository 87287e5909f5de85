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

/// The ports that the shelf uses. All must outlive it.
struct ShelfPorts {
    Clock& clock;
    MainLoop& loop;
    Preferences& preferences;
    FileReferences& files;
    Worker& worker;
    BackgroundQueue& jobs;  ///< runs what blocks on the worker
    Pasteboard& pasteboard;
    /// The user's data directory; files that were dropped as data go below it.
    QString dataFolder;
};

/// What the creature holds: files, links, notes and timers. Saves every change of the model's lists, and whether the
/// creature is hidden, once the preferences have been read. Main thread only; the model must outlive it.
class Shelf {
 public:
    Shelf(NotchModel& model, const ShelfPorts& ports);

    /// Once their disks have answered, holds the stored files that still exist, as older than what is held already.
    void loadShelf();
    /// Holds the stored bites and timers, as older than what is held already, and hides the creature if it was hidden.
    void loadHeld();

    /// Replaces all held files with these, including stored ones that are still being resolved.
    void replaceItems(const QList<QUrl>& files);
    /// Adds what is not held yet, dropping the oldest beyond the limit. Returns the number of new ones.
    int addItems(const QList<QUrl>& files);
    int addBites(const QList<Bite>& bites);
    void addTimer(double length);  ///< in minutes
    void removeItem(const QUrl& file);
    void removeBite(const Bite& bite);
    void removeTimer(const HeldTimer& timer);
    void clearDoneTimers();
    /// Marks the timers that are due as done; returns whether there was one.
    bool tickTimers();

    /// Puts text on the clipboard, and boops.
    void copy(const QString& text);
    /// Converts a held image in the background and holds the result. Does nothing while another job is running.
    void chew(const QUrl& file, Chewer::Mode mode);
    /// Reads the text in a held image or PDF in the background, copies it to the clipboard and holds its beginning as a
    /// note. Does nothing while another job is running.
    void readText(const QUrl& file);

    /// Where files that were dropped as data are written. May not exist yet: the writer creates it, off the main
    /// thread.
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
    QList<HeldTimer> surplusTimers_;  // stored ones beyond the limit; they stay stored
    Chewer chewer_;
    ChewJobs chewJobs_;
    std::vector<Subscription> saves_;
};
