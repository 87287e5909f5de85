#include "worker/Languages.h"

namespace {

TEST(Languages, AreTheUsersAndEnglish) {
    const struct {
        QStringList spoken;
        const char* names;
    } cases[] = {
        {{}, "eng"},
        {{QStringLiteral("C")}, "eng"},
        {{QStringLiteral("de-AT"), QStringLiteral("de"), QStringLiteral("en-US")}, "deu+eng"},
        {{QStringLiteral("fr-FR"), QStringLiteral("es"), QStringLiteral("it")}, "fra+spa+eng"},
        {{QStringLiteral("nb-NO"), QStringLiteral("nn-NO")}, "nor+eng"},
        {{QStringLiteral("zh-CN")}, "chi_sim+eng"},
        {{QStringLiteral("zh-Hant-TW")}, "chi_tra+eng"},
        {{QStringLiteral("sr-Latn-RS")}, "srp_latn+eng"},
        {{QStringLiteral("sr-RS")}, "srp+eng"},
        {{QStringLiteral("cs-CZ")}, "ces+eng"},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(recognitionLanguages(each.spoken), each.names) << qPrintable(each.spoken.join(u' '));
    }
}

}  // namespace
