#include "app/CommandLineFlags.h"

#include <cmath>

#include "creature/BehaviourEngine.h"
#include "shelf/Shelf.h"

namespace {

constexpr double kReactionDelay = 1.5;  // seconds in which the state before the reaction can be seen

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

CommandLineFlags::CommandLineFlags(NotchModel& model, Shelf& shelf, BehaviourEngine& behaviour, MainLoop& loop,
                                   QStringList arguments)
    : model_(model), shelf_(shelf), behaviour_(behaviour), loop_(loop), arguments_(std::move(arguments)) {}

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

// Flags take effect in a fixed order, whatever their order on the command line: later ones build on earlier ones.
FlagEffects CommandLineFlags::apply() {
    FlagEffects effects;
    applyToy(effects);
    if (has("--targeted")) model_.dropTargeted = true;
    applyShelfSeeds();
    applyPointerAndSky();
    applyPowerAndMood();
    applySenses();
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
        model_.toy = toy;
        model_.hidden = false;
        model_.hovering = true;
        model_.cursor = QPointF(model_.centerX + 40, model_.screenTop - 230);
        return;
    }
}

void CommandLineFlags::applyShelfSeeds() {
    if (has("--bigseed")) {
        shelf_.replaceItems(
            applications({"Notes", "Calendar", "Maps", "Calculator", "TextEdit", "Preview", "Stocks", "Dictionary"}));
    }
    if (has("--expand")) model_.shelfExpanded = true;
    if (has("--seed")) shelf_.replaceItems(applications({"Notes", "Calendar"}));
}

void CommandLineFlags::applyPointerAndSky() {
    if (const auto text = value("--cursor=")) {
        QList<double> numbers;
        for (const QString& part : text->split(u',', Qt::SkipEmptyParts)) {
            if (const auto parsed = parseNumber(part)) numbers.append(*parsed);
        }
        if (numbers.size() == 2) model_.cursor = QPointF(model_.centerX + numbers[0], model_.screenTop - numbers[1]);
    }
    if (const auto name = value("--sky=")) {
        model_.sky = skyNamed(name->toLower());
        model_.tempC = 21.0;
    }
    if (has("--drag")) model_.dragOffset = QSizeF(6, 76);
}

void CommandLineFlags::applyPowerAndMood() {
    if (has("--charging")) {
        model_.charging = true;
        model_.battery = 0.55;
        model_.batteryPinned = true;
    }
    if (has("--low")) {
        model_.battery = 0.12;
        model_.charging = false;
        model_.batteryPinned = true;
    }
    if (has("--yawn")) later([this] { behaviour_.yawn(); });
    if (has("--worry")) later([this] { ++model_.worryCount; });
}

void CommandLineFlags::applySenses() {
    if (has("--camera")) {
        model_.cameraInUse = true;
        model_.privacyPinned = true;
    }
    if (has("--mic")) {
        model_.micInUse = true;
        model_.privacyPinned = true;
    }
    if (has("--needsyou")) {
        model_.needsYou = true;
        later([this] { ++model_.spawnCount; });
    }
    if (has("--spawn")) later([this] { ++model_.spawnCount; });
    if (has("--caps")) model_.capsOn = true;
    if (has("--offline")) model_.offline = true;
    if (has("--disk")) {
        model_.diskFull = true;
        model_.batteryPinned = true;
    }
    if (has("--whispers")) model_.eventWhisper = QStringLiteral("10:00 standup");
    if (has("--update")) model_.updateAvailable = QStringLiteral("9.9");
    if (has("--downloading")) model_.downloading = true;
    if (has("--chewing")) model_.chewing = true;
}

void CommandLineFlags::applyHeldAndPlace() {
    if (has("--hidden")) model_.hidden = true;
    if (has("--music")) {
        model_.musicPlaying = true;
        model_.musicTrack = QStringLiteral("Night Train Home — The Lanterns");
    }
    if (has("--bites")) {
        model_.bites = QList{Bite::link(QUrl(QStringLiteral("https://example.org/recipes/soup"))),
                             Bite::note(QStringLiteral("call the bank about the card"))};
    }
    if (const auto seconds = number("--timer=")) shelf_.addTimer(*seconds / 60);
    if (const auto x = number("--slide=")) model_.slideX = *x;
    if (has("--idle")) model_.hovering = false;
}
