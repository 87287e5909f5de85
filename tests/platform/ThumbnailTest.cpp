#include <gtest/gtest.h>

#include <QColor>
#include <QJsonArray>
#include <QJsonDocument>

#include "platform/Thumbnail.h"

using namespace Qt::StringLiterals;

namespace {

TEST(Thumbnail, IsBelievedOnlyWhereItFits) {
    // Width, height and pixels (P: a red that is half there, a green); only the first two are right.
    const QByteArray cases = R"([[2, 1, "P"], [1, 2, "P"], [2, 2, "P"], [1, 1, "P"], [3, 1, "P"], [0, 0, ""],
        [4, 1, "xxxxxxxxxxxxxxxxxxxxxxxx"], [1, 4, "xxxxxxxxxxxxxxxxxxxxxxxx"], [-2, -1, "P"], [1.5, 2, "P"],
        [65536, 65536, ""], ["2", 1, "P"], [null, 1, "P"], [2, 1], [2, 1, "/wAAgAD/AP"], [2, 1, "!P"], [2, 1, "PĀ"]])";
    const QJsonArray rows = QJsonDocument::fromJson(QByteArray(cases).replace('P', "/wAAgAD/AP8=")).array();
    ASSERT_EQ(rows.size(), 17);
    for (int i = 0; i < rows.size(); ++i) {
        const QJsonArray c = rows[i].toArray();
        const auto made = thumbnailIn(QJsonObject{{u"width"_s, c[0]}, {u"height"_s, c[1]}, {u"pixels"_s, c[2]}}, 2);
        EXPECT_EQ(made.has_value(), i < 2) << i;
        EXPECT_TRUE(!made || made->pixelColor(0, 0) == QColor(255, 0, 0, 128));
    }
    EXPECT_FALSE(thumbnailIn(
        QJsonObject{{u"error"_s, QJsonObject()}, {u"width"_s, 1}, {u"height"_s, 1}, {u"pixels"_s, u"/wAAgA=="_s}}, 2));
    EXPECT_FALSE(thumbnailIn({}, 2));
}

}  // namespace
