#include <gmock/gmock.h>

#include <QPainter>
#include <QPdfWriter>

#include "reading/Reading.h"
#include "reading/Screenshots.h"

using namespace Qt::StringLiterals;

namespace {

constexpr const char* kText = "Minutes of the garden club\nPresent: Anna, Tom & 14 others";

/// A page of the given size in points, and a second one.
void writePdf(const QString& path, QSizeF points) {
    QPdfWriter writer(path);
    writer.setPageSize(QPageSize(points, QPageSize::Point));
    writer.setPageMargins({});
    writer.setResolution(72);
    QPainter painter(&writer);
    painter.setFont(face(u"Liberation Serif"_s, 12));
    int y = 60;
    for (const QString& line : QString::fromLatin1(kText).split(u'\n')) painter.drawText(60, y += 20, line);
    writer.newPage();
    painter.drawText(60, 80, u"This is on the second page"_s);
}

using PdfReading = Reading;

TEST_F(PdfReading, ReadsTheFirstPageOnly) {
    writePdf(path("two.pdf"), {595.276, 841.89});
    EXPECT_EQ(reading("two.pdf"), kText);
}

TEST_F(PdfReading, FailsWhereThereIsNoPageToRead) {
    const QByteArray head("%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n2 0 obj<</Type/Pages/Kids");
    write("empty.pdf", {});
    write("text.pdf", "Not a document, though it is called one.");
    write("pageless.pdf", head + "[]/Count 0>>endobj\ntrailer<</Root 1 0 R>>\n%%EOF\n");
    write("locked.pdf", head + R"([3 0 R]/Count 1>>endobj
3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 200 100]>>endobj
4 0 obj<</Filter/Standard/V 1/R 2/P -4/O(kkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkk)/U(kkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkk)>>endobj
trailer<</Root 1 0 R/Encrypt 4 0 R/ID[(a)(a)]>>
%%EOF
)");
    for (const char* name : {"empty.pdf", "text.pdf", "pageless.pdf", "locked.pdf"})
        EXPECT_EQ(reading(name), "4 couldn't open the PDF") << name;
    writePdf(path("wall.pdf"), {14400, 14400});
    EXPECT_EQ(reading("wall.pdf"), "5 ") << "larger than any paper";
    QPainter(std::make_unique<QPdfWriter>(path("blank.pdf")).get()).end();
    EXPECT_EQ(reading("blank.pdf"), "7 no text found");
}

// Wherever a document was cut off, reading ends, with its text or with a failure.
TEST_F(PdfReading, SurvivesACutDocument) {
    writePdf(path("whole.pdf"), {300, 200});
    QFile file(path("whole.pdf"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray whole = file.readAll();
    for (int part = 1; part < 10; ++part) {
        write("cut.pdf", whole.left(whole.size() * part / 10));
        EXPECT_THAT(reading("cut.pdf"),
                    testing::AnyOf(testing::MatchesRegex("[467] .*"), testing::HasSubstr("Minutes")));
    }
}

}  // namespace
