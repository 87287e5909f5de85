#include "watchers/AgentWatcher.h"

#include <algorithm>

#include "platform/Workspace.h"
#include "watchers/AgentDirectory.h"

namespace {

constexpr double kInterval = 2.5;  // seconds
constexpr int kProjectLine = 3;
constexpr int kTerminalLine = 4;
constexpr qsizetype kShownProjects = 3;

/// What follows the last dot; empty if the only dot is the first character.
QString extension(const QString& name) {
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 ? name.mid(dot + 1) : QString();
}

bool isRecord(const QString& name) {
    return !name.startsWith(u'.') && extension(name).isEmpty();
}

bool isAsk(const QString& name) {
    return extension(name) == QLatin1String("ask");
}

/// Line `place` of `text`, counted from 0; absent if there are fewer. Does not split the rest, which may be long.
std::optional<QString> line(const QString& text, int place) {
    qsizetype start = 0;
    for (; place > 0; --place) {
        start = text.indexOf(u'\n', start) + 1;
        if (start == 0) return {};
    }
    const qsizetype end = text.indexOf(u'\n', start);
    return text.mid(start, end < 0 ? -1 : end - start);
}

}  // namespace

struct AgentWatcher::Census {
    int records = 0, waiting = 0, alerts = 0;
    bool asks = false;
    QStringList projects;
    std::optional<QString> terminal;  ///< where the first agent that needs the user runs
};

AgentWatcher::AgentWatcher(NotchModel& model, MainLoop& loop, BackgroundQueue& disk, Workspace& workspace,
                           QString folder)
    : model_(model), loop_(loop), workspace_(workspace), folder_(std::move(folder)), jobs_(disk, loop) {}

void AgentWatcher::start() {
    timer_ = loop_.every(kInterval, [this] { scanAgents(); });
}

void AgentWatcher::scanAgents() {
    if (scanning_) return;
    scanning_ = true;
    const auto look = [folder = folder_] {
        AgentDirectory directory(folder);
        return takeCensus(directory);
    };
    jobs_.run(look, [this](const Census& census) {
        scanning_ = false;
        apply(census);
    });
}

AgentWatcher::Census AgentWatcher::takeCensus(AgentDirectory& directory) {
    Census census;
    const QStringList& entries = directory.entries();
    for (const QString& name : entries) {
        if (!isRecord(name)) continue;
        ++census.records;
        const QString record = directory.text(name);
        const QString flag = directory.text(name + QStringLiteral(".flag"));
        if (flag.startsWith(QLatin1String("wait"))) {
            ++census.waiting;
        } else if (flag.startsWith(QLatin1String("alert"))) {
            ++census.alerts;
            if (!census.terminal) census.terminal = line(record, kTerminalLine);
        } else if (const auto project = line(record, kProjectLine); project && !project->isEmpty()) {
            census.projects.append(*project);
        }
    }
    const auto ask = std::find_if(entries.begin(), entries.end(), isAsk);
    census.asks = ask != entries.end();
    if (census.asks && !census.terminal) census.terminal = line(directory.text(ask->chopped(4)), kTerminalLine);
    return census;
}

void AgentWatcher::apply(const Census& census) {
    model_.blockedTerminal = census.terminal;

    QStringList names = census.projects;
    names.sort();
    names.removeDuplicates();
    const QString text = names.mid(0, kShownProjects).join(QStringLiteral(" · "));
    if (text != model_.agentProjects.get()) model_.agentProjects = text;

    const int working = std::max(census.records - census.waiting - census.alerts, 0);
    const bool needs = census.alerts > 0 || census.asks;
    if (lastAlive_ >= 0 && census.records > lastAlive_ && model_.toy == Toy::critter) ++model_.spawnCount;
    lastAlive_ = census.records;
    if (working != model_.agentsWorking)
        model_.withAnimation(Animation::spring(0.4, 0.7), [&] { model_.agentsWorking = working; });
    if (needs != model_.needsYou) {
        model_.withAnimation(Animation::easeInOut(0.4), [&] { model_.needsYou = needs; });
        if (needs) ++model_.spawnCount;
    }
}

void AgentWatcher::focusBlockedTerminal() {
    if (model_.blockedTerminal) workspace_.activateOrOpenTerminal(*model_.blockedTerminal);
}
