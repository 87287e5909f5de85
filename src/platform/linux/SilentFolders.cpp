#include "platform/linux/SilentFolders.h"

#include <unistd.h>

#include <QFontDatabase>
#include <QtGlobal>
#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace {

constexpr std::chrono::milliseconds kTimeout(300);

struct Folder {
    const char* variable;
    const char* inHome;  // default below HOME
};

constexpr std::array<Folder, 4> kFolders{
    {{"HOME", ""}, {"XDG_CONFIG_HOME", "/.config"}, {"XDG_DATA_HOME", "/.local/share"}, {"XDG_CACHE_HOME", "/.cache"}}};

struct Answers {
    std::mutex mutex;
    std::condition_variable changed;
    std::array<bool, kFolders.size()> came{};

    bool all() const {
        return std::all_of(came.begin(), came.end(), [](bool one) { return one; });
    }
};

QByteArray placeOf(const Folder& folder) {
    const QByteArray set = qgetenv(folder.variable);
    return set.startsWith('/') ? set : qgetenv("HOME") + folder.inHome;
}

/// Returns when the disk has answered. Looks for a file that does not exist, so that no cache can answer.
void askFor(const QByteArray& folder) {
    ::access((folder + "/.glimmet-" + QByteArray::number(::getpid())).constData(), F_OK);
}

}  // namespace

SilentFolders::SilentFolders() {
    const auto answers = std::make_shared<Answers>();
    for (size_t i = 0; i < kFolders.size(); ++i) {
        std::thread([answers, i, place = placeOf(kFolders[i])] {
            askFor(place);
            const std::lock_guard lock(answers->mutex);
            answers->came[i] = true;
            answers->changed.notify_one();
        }).detach();
    }
    std::unique_lock lock(answers->mutex);
    answers->changed.wait_for(lock, kTimeout, [&] { return answers->all(); });
    for (size_t i = 0; i < kFolders.size(); ++i) {
        if (answers->came[i]) continue;
        hidden_.append({kFolders[i].variable, qgetenv(kFolders[i].variable)});
        // Nothing can be read or created below it.
        qputenv(kFolders[i].variable, "/dev/null");
    }
}

void SilentFolders::reveal() {
    if (hidden_.isEmpty()) return;
    // Initialises fontconfig, which looks for fonts, settings and its cache on first use.
    QFontDatabase::families();
    for (const auto& [variable, value] : hidden_) {
        if (value.isNull())
            qunsetenv(variable);
        else
            qputenv(variable, value);
    }
}
