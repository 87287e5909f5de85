#include "platform/linux/DiskLanes.h"

#include <QFile>
#include <algorithm>
#include <list>

namespace {

constexpr int kMostPerMount = 3;

/// The kernel writes white space and backslashes in octal.
QByteArray unescaped(const QByteArray& field) {
    QByteArray text;
    for (qsizetype i = 0; i < field.size(); ++i) {
        bool octal = false;
        const int code = field[i] == '\\' ? field.mid(i + 1, 3).toInt(&octal, 8) : 0;
        text += octal ? char(code) : field[i];
        if (octal) i += 3;
    }
    return text;
}

/// Where the file system is mounted that `path` lies on, going by its name: that asks no disk.
QByteArray mountOf(const QByteArray& path) {
    QFile table(QStringLiteral("/proc/self/mountinfo"));
    QByteArray longest;
    if (!table.open(QIODevice::ReadOnly)) return longest;
    for (const QByteArray& line : table.readAll().split('\n')) {
        const QByteArray mount = unescaped(line.split(' ').value(4));
        const bool above = path.startsWith(mount) && (mount.endsWith('/') || path.mid(mount.size(), 1) == "/");
        if (above && mount.size() > longest.size()) longest = mount;
    }
    return longest;
}

}  // namespace

struct DiskLanes::State {
    BackgroundQueue& queue;
    MainLoop& loop;
    std::list<Question> waiting, running;

    bool mayStart(const Question& question) const {
        const auto sameFolder = [&](const Question& other) { return other.folder == question.folder; };
        const auto sameMount = [&](const Question& other) { return other.mount == question.mount; };
        return running.size() < kMostThreads && std::none_of(running.begin(), running.end(), sameFolder) &&
               std::count_if(running.begin(), running.end(), sameMount) < kMostPerMount;
    }
};

DiskLanes::DiskLanes(BackgroundQueue& queue, MainLoop& loop) : state_(new State{queue, loop, {}, {}}) {}

DiskLanes::~DiskLanes() = default;

void DiskLanes::ask(const QByteArray& path, std::function<Answer()> question) {
    state_->waiting.push_back({path.left(path.lastIndexOf('/')), mountOf(path), std::move(question)});
    start(state_);
}

void DiskLanes::start(const std::shared_ptr<State>& state) {
    for (auto next = state->waiting.begin(); next != state->waiting.end();) {
        const auto question = next++;
        if (!state->mayStart(*question)) continue;
        state->running.splice(state->running.end(), state->waiting, question);
        state->queue.run([&loop = state->loop, weak = std::weak_ptr(state), question, ask = question->ask] {
            loop.post([weak, question, answer = ask()] {
                const auto lanes = weak.lock();
                if (!lanes) return;
                lanes->running.erase(question);
                start(lanes);
                answer();
            });
        });
    }
}
