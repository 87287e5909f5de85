#include "app/CommandLineFlags.h"

#include <cmath>

namespace {

constexpr double kReactionDelay = 1.5;  // seconds, so that a viewer sees the state before

QList<QUrl> applications(std::initializer_list<const char*> names) {
    QList<QUrl> urls;
    for (const char* name : names)
        urls.append(QUrl::fromLocalFile(QStringLiteral("/System/Applications/%1.app").arg(QLatin1String(name))));
    return urls;
}

Sky skyNamed(const QString& name) {
    if (name == QLatin1String("rain")) return Sky::rain;
    if (name == QLatin1String("snow")) return Sky::snow;
    if (name == QLatin1String("storm")) return Sky::storm;
    if (name == QLatin1String("fog")) return Sky::fog;
    if (name == QLatin1String("cloud") || name == QLatin1String("cloudy")) return Sky::cloudy;
    if (name == QLatin1String("night")) return Sky::clearNight;
    return Sky::clearDay;
}

std::optional<double> parseNumber(const QString& text) {
    bool ok = false;
    const double value = text.toDouble(&ok);
    return ok && std::isfinite(value) && text == text.trimmed() ? std::optional(value) : std::nullopt;
}

}  // namespace

CommandLineFlags::CommandLineFlags(NotchModel& model, MainLoop& loop, QStringList arguments)
    : m_(model), loop_(loop), arguments_(std::move(arguments)) {}

bool CommandLineFlags::has(const char* flag) const {
    return arguments_.contains(QLatin1String(flag));
}

std::optional<QString> CommandLineFlags::value(const char* flag) const {
    const QLatin1String prefix(flag);
    for (const QString& argument : arguments_) {
        if (argument.startsWith(prefix)) return argument.mid(prefix.size());
    }
    return {};
}

std::optional<double> CommandLineFlags::number(const char* flag) const {
    const auto text = value(flag);
    return text ? parseNumber(*text) : std::nullopt;
}

void CommandLineFlags::later(std::function<void()> reaction) {
    reactions_.push_back(loop_.after(kReactionDelay, std::move(reaction)));
}

// The flags take effect in a fixed order, whatever their order on the command line: later ones see the earlier ones'
// work.
FlagEffects CommandLineFlags::apply() {
    FlagEffects effects;
    applyToy(effects);
    if (has("--targeted")) m_.dropTargeted = true;
    applyShelfSeeds();
    applyPointerAndSky();
    applyPowerAndMood(effects);
    applySenses(effects);
    effects.screenTest = has("--screentest");
    effects.chewTest = value("--chewtest=");
    applyHeldAndPlace();
    return effects;
}

void CommandLineFlags::applyToy(FlagEffects& effects) {
    const auto name = value("--toy=");
    if (!name) return;
    for (const Toy toy : allToys) {
        if (!rawValue(toy).toLower().startsWith(name->toLower())) continue;
        effects.demo = true;
        m_.toy = toy;
        m_.hidden = false;
        m_.hovering = true;
        m_.cursor = QPointF(m_.centerX + 40, m_.screenTop - 230);
        return;
    }
}

void CommandLineFlags::applyShelfSeeds() {
    if (has("--bigseed")) {
        m_.replaceItems(
            applications({"Notes", "Calendar", "Maps", "Calculator", "TextEdit", "Preview", "Stocks", "Dictionary"}));
    }
    if (has("--expand")) m_.shelfExpanded = true;
    if (has("--seed")) m_.replaceItems(applications({"Notes", "Calendar"}));
}

void CommandLineFlags::applyPointerAndSky() {
    if (const auto text = value("--cursor=")) {
        QList<double> numbers;
        for (const QString& part : text->split(u',', Qt::SkipEmptyParts)) {
            if (const auto parsed = parseNumber(part)) numbers.append(*parsed);
        }
        if (numbers.size() == 2) m_.cursor = QPointF(m_.centerX + numbers[0], m_.screenTop - numbers[1]);
    }
    if (const auto name = value("--sky=")) {
        m_.sky = skyNamed(name->toLower());
        m_.tempC = 21.0;
    }
    if (has("--drag")) m_.dragOffset = QSizeF(6, 76);
}

void CommandLineFlags::applyPowerAndMood(FlagEffects& effects) {
    if (has("--charging")) {
        m_.charging = true;
        m_.battery = 0.55;
        effects.batteryPinned = true;
    }
    if (has("--low")) {
        m_.battery = 0.12;
        m_.charging = false;
        effects.batteryPinned = true;
    }
    if (has("--yawn")) later([this] { m_.yawn(); });
    if (has("--worry")) later([this] { ++m_.worryCount; });
}

void CommandLineFlags::applySenses(FlagEffects& effects) {
    if (has("--camera")) {
        m_.cameraInUse = true;
        effects.privacyPinned = true;
    }
    if (has("--mic")) {
        m_.micInUse = true;
        effects.privacyPinned = true;
    }
    if (has("--needsyou")) {
        m_.needsYou = true;
        later([this] { ++m_.spawnCount; });
    }
    if (has("--spawn")) later([this] { ++m_.spawnCount; });
    if (has("--caps")) m_.capsOn = true;
    if (has("--offline")) m_.offline = true;
    if (has("--disk")) {
        m_.diskFull = true;
        effects.batteryPinned = true;
    }
    if (has("--whispers")) m_.eventWhisper = QStringLiteral("10:00 standup");
    if (has("--update")) m_.updateAvailable = QStringLiteral("9.9");
    if (has("--downloading")) m_.downloading = true;
    if (has("--chewing")) m_.chewing = true;
}

void CommandLineFlags::applyHeldAndPlace() {
    if (has("--hidden")) m_.hidden = true;
    if (has("--music")) {
        m_.musicPlaying = true;
        m_.musicTrack = QStringLiteral("Night Train Home — The Lanterns");
    }
    if (has("--bites")) {
        m_.bites = QList{Bite::link(QUrl(QStringLiteral("https://example.org/recipes/soup"))),
                         Bite::note(QStringLiteral("call the bank about the card"))};
    }
    if (const auto seconds = number("--timer=")) m_.addTimer(*seconds / 60);
    if (const auto x = number("--slide=")) m_.slideX = *x;
    if (has("--idle")) m_.hovering = false;
}
