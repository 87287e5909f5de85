#include "views/Fonts.h"

#include <QFontDatabase>
#include <QStringList>

namespace {

QString roundedFamily() {
    for (const QString& family :
         {QStringLiteral("Nunito"), QStringLiteral("Quicksand"), QStringLiteral("Varela Round")}) {
        if (QFontDatabase::hasFamily(family)) return family;
    }
    return QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
}

QString family(Face face) {
    switch (face) {
        case Face::rounded:
            return roundedFamily();
        case Face::monospaced:
            return QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
        case Face::system:
            break;
    }
    return QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
}

}  // namespace

QFont font(Face face, QFont::Weight weight) {
    QFont font(family(face));
    font.setPixelSize(100);
    font.setWeight(weight);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}
