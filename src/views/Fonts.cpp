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

/// The difference between `weight` and the nearest upright weight of `family`.
int distance(const QString& family, int weight) {
    int nearest = std::numeric_limits<int>::max();
    for (const QString& style : QFontDatabase::styles(family)) {
        if (!QFontDatabase::italic(family, style))
            nearest = std::min(nearest, std::abs(QFontDatabase::weight(family, style) - weight));
    }
    return nearest;
}

/// The family with the closest match for `weight`. Weights between regular and bold are often separate families, such
/// as "Quicksand Medium".
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
    // Never destroyed: Qt's font database is gone before static destructors run.
    static auto& fonts = *new QHash<std::pair<QString, int>, QFont>;
    const std::pair key(family(face), int(weight));
    const auto known = fonts.constFind(key);
    if (known != fonts.cend()) return *known;
    QFont font(familyWith(key.first, weight));
    font.setPixelSize(kFontPixels);
    font.setWeight(weight);
    font.setHintingPreference(QFont::PreferNoHinting);
    return fonts[key] = font;
}
