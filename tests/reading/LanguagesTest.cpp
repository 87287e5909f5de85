#include <gtest/gtest.h>

#include "worker/Languages.h"

namespace {

TEST(Languages, AreTheUsersAndEnglish) {
    for (const auto& [spoken, names] : {std::pair("", "eng"),
                                        {"C", "eng"},
                                        {"de-AT de en-US", "deu+eng"},
                                        {"fr-FR es it", "fra+spa+eng"},
                                        {"nb-NO nn-NO", "nor+eng"},
                                        {"zh-CN", "chi_sim+eng"},
                                        {"zh-Hant-TW", "chi_tra+eng"},
                                        {"sr-Latn-RS", "srp_latn+eng"},
                                        {"sr-RS", "srp+eng"},
                                        {"cs-CZ", "ces+eng"}})
        EXPECT_EQ(recognitionLanguages(QString::fromLatin1(spoken).split(u' ', Qt::SkipEmptyParts)), names) << spoken;
}

}  // namespace
