#include "views/Fonts.h"

#include <QFontDatabase>
#include <QHash>
#include <QStringList>
#include <algorithm>
#include <cstdlib>
#include <limits>
#include <utility>

namespace {

/// Empty if none is installed.
QString roundedFamily() {
    for (const QString& family :
         {QStringLiteral("Nunito"), QStringLiteral("Quicksand"), QStringLiteral("Varela Round")}) {
        if (QFontDatabase::hasFamily(family)) return family;
    }
    return {};
}

QString family(Face face) {
    switch (face) {
        case Face::rounded: {
            static const QString rounded = roundedFamily();
            if (!rounded.isEmpty()) return rounded;
            break;
        }
        case Face::monospaced:
            return QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
        case Face::system:
            break;
    }
    return QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
}

/// How far the upright weight of `family` that is nearest to `weight` is from it.
int distance(const QString& family, int weight) {
    int least = std::numeric_limits<int>::max();
    for (const QString& style : QFontDatabase::styles(family)) {
        if (!QFontDatabase::italic(family, style))
            least = std::min(least, std::abs(QFontDatabase::weight(family, style) - weight));
    }
    return least;
}

/// The family that has `weight` of what is called `family`. Weights between regular and bold are often families of
/// their own, such as "Quicksand Medium".
QString familyWith(const QString& family, int weight) {
    static const QStringList names{QStringLiteral("Thin"),   QStringLiteral("ExtraLight"), QStringLiteral("Light"),
                                   QStringLiteral("Medium"), QStringLiteral("SemiBold"),   QStringLiteral("DemiBold"),
                                   QStringLiteral("Bold"),   QStringLiteral("ExtraBold"),  QStringLiteral("Black")};
    QString best = family;
    for (const QString& name : names) {
        const QString other = family + QLatin1Char(' ') + name;
        if (QFontDatabase::hasFamily(other) && distance(other, weight) < distance(best, weight)) best = other;
    }
    return best;
}

}  // namespace

QFont font(Face face, QFont::Weight weight) {
    // Not destroyed at the end: what belongs to a font is gone before that.
    static auto& fonts = *new QHash<std::pair<QString, int>, QFont>;
    const std::pair key(family(face), int(weight));
    const auto known = fonts.constFind(key);
    if (known != fonts.cend()) return *known;
    QFont font(familyWith(key.first, weight));
    font.setPixelSize(100);
    font.setWeight(weight);
    font.setHintingPreference(QFont::PreferNoHinting);
    return fonts[key] = font;
}
