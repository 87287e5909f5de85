#include <gtest/gtest.h>

#include <QColor>
#include <QJsonArray>
#include <QJsonDocument>

#include "platform/Thumbnail.h"

using namespace Qt::StringLiterals;

namespace {

TEST(Thumbnail, IsBelievedOnlyWhereItFits) {
    // Width, height and pixels (P: a red that is half there, a green); only the first two are right.
    const char* const cases[] = {R"([2, 1, "P"])",
                                 R"([1, 2, "P"])",
                                 R"([2, 2, "P"])",
                                 R"([1, 1, "P"])",
                                 R"([3, 1, "P"])",
                                 R"([0, 0, ""])",
                                 R"([4, 1, "xxxxxxxxxxxxxxxxxxxxxxxx"])",
                                 R"([1, 4, "xxxxxxxxxxxxxxxxxxxxxxxx"])",
                                 R"([-2, -1, "P"])",
                                 R"([1.5, 2, "P"])",
                                 R"([65536, 65536, ""])",
                                 R"(["2", 1, "P"])",
                                 R"([null, 1, "P"])",
                                 "[2, 1]",
                                 R"([2, 1, "/wAAgAD/AP"])",
                                 R"([2, 1, "!P"])",
                                 R"([2, 1, "PĀ"])"};
    for (const char* const& row : cases) {
        const QByteArray json = QByteArray(row).replace('P', "/wAAgAD/AP8=");
        const QJsonArray c = QJsonDocument::fromJson(json).array();
        const auto made = thumbnailIn(QJsonObject{{u"width"_s, c[0]}, {u"height"_s, c[1]}, {u"pixels"_s, c[2]}}, 2);
        EXPECT_EQ(made.has_value(), &row < cases + 2) << row;
        EXPECT_TRUE(!made || made->pixelColor(0, 0) == QColor(255, 0, 0, 128));
    }
    EXPECT_FALSE(thumbnailIn(
        QJsonObject{{u"error"_s, QJsonObject()}, {u"width"_s, 1}, {u"height"_s, 1}, {u"pixels"_s, u"/wAAgA=="_s}}, 2));
    EXPECT_FALSE(thumbnailIn({}, 2));
}

}  // namespace
