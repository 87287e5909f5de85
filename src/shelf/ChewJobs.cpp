#include <QDir>
#include <atomic>

#include "creature/NotchModel.h"
#include "platform/BackgroundQueue.h"
#include "platform/Pasteboard.h"
#include "shelf/NoteText.h"

namespace {

constexpr double kAfterTaste = 1.1;  // seconds that the creature goes on chewing when the job is done
constexpr double kPatience = 80;     // seconds; the worker has a minute, and the disk of a file may never answer

/// `take` tells whether it went well.
void endChewing(NotchModel& m, const std::function<bool()>& take) {
    bool well = false;
    m.withAnimation(Animation::spring(0.32, 0.8), [&] {
        m.chewing = false;
        well = take();
    });
    if (!well) ++m.worryCount;
}

}  // namespace

// `job` runs in the background and gives what is to be done with its result in the end: that tells whether it went
// well.
void NotchModel::munch(std::function<std::function<bool()>()> job) {
    if (chewing) return;
    withAnimation(Animation::easeInOut(0.3), [this] { chewing = true; });
    const auto isGivenUp = std::make_shared<std::atomic_bool>(false);
    chewEnd_ = loop_.after(kPatience, [this, isGivenUp] {
        *isGivenUp = true;
        endChewing(*this, [] { return false; });
    });
    shelf_.jobs.run([&loop = loop_, self = std::weak_ptr(self_), isGivenUp, job = std::move(job)] {
        // When disks that hang hold up all threads, it waited for one in vain.
        if (*isGivenUp) return;
        loop.post([self, isGivenUp, take = job()] {
            const auto model = self.lock();
            if (!model || *isGivenUp) return;
            NotchModel& m = **model;
            m.chewEnd_ = m.loop_.after(kAfterTaste, [&m, take] { endChewing(m, take); });
        });
    });
}

void NotchModel::chew(const QUrl& file, Chewer::Mode mode) {
    munch([this, chewer = chewer_, file, mode, folder = droppedFolder()]() mutable -> std::function<bool()> {
        QDir().mkpath(folder.toLocalFile());
        const auto result = chewer.chew(file, mode, folder);
        return [this, result] {
            const QUrl* made = std::get_if<QUrl>(&result);
            if (!made) return false;
            addItems({*made});
            ++swallowCount;
            return true;
        };
    });
}

void NotchModel::readText(const QUrl& file) {
    munch([this, chewer = chewer_, file]() mutable -> std::function<bool()> {
        const auto result = chewer.readText(file);
        return [this, result] {
            const QString* text = std::get_if<QString>(&result);
            if (!text) return false;
            shelf_.pasteboard.setString(*text);
            addBites({Bite::note(firstCharacters(*text))});
            ++boopCount;
            markActivity();
            return true;
        };
    });
}
