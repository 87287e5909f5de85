#include "worker/Languages.h"

#include <QLocale>

namespace {

QByteArray recognitionName(const QString& spoken) {
    const QLocale locale(spoken);
    switch (locale.language()) {
        case QLocale::C:
            return {};
        case QLocale::Chinese:
            return locale.script() == QLocale::TraditionalChineseScript ? "chi_tra" : "chi_sim";
        case QLocale::NorwegianBokmal:
        case QLocale::NorwegianNynorsk:
            return "nor";
        case QLocale::Kurdish:
        case QLocale::CentralKurdish:
            return "kmr";
        case QLocale::Serbian:
            return locale.script() == QLocale::LatinScript ? "srp_latn" : "srp";
        case QLocale::Uzbek:
            return locale.script() == QLocale::CyrillicScript ? "uzb_cyrl" : "uzb";
        default:
            return QLocale::languageToCode(locale.language(), QLocale::ISO639Part2T).toLatin1();
    }
}

}  // namespace

QByteArray recognitionLanguages(const QStringList& spoken) {
    // Every further language costs as much time as the first.
    constexpr qsizetype kMaxNames = 2;
    QByteArrayList names;
    for (const QString& language : spoken) {
        const QByteArray name = recognitionName(language);
        if (!name.isEmpty() && name != "eng" && !names.contains(name) && names.size() < kMaxNames) names += name;
    }
    names += "eng";
    return names.join('+');
}
