#include <QPainter>
#include <QPdfWriter>

#include "reading/Reading.h"
#include "reading/Screenshots.h"

namespace {

const QString firstLine = QStringLiteral("Minutes of the garden club");
const QString secondLine = QStringLiteral("Present: Anna, Tom & 14 others");

/// A page of the given size in points, and a second one.
void writePdf(const QString& path, QSizeF points) {
    QPdfWriter writer(path);
    writer.setPageSize(QPageSize(points, QPageSize::Point));
    writer.setPageMargins({});
    writer.setResolution(72);
    QPainter painter(&writer);
    painter.setFont(face(QStringLiteral("Liberation Serif"), 12));
    painter.drawText(60, 80, firstLine);
    painter.drawText(60, 100, secondLine);
    writer.newPage();
    painter.drawText(60, 80, QStringLiteral("This is on the second page"));
}

class PdfReading : public Reading {};

TEST_F(PdfReading, ReadsTheFirstPageOnly) {
    writePdf(path("Two Pages.PDF"), {595.276, 841.89});
    EXPECT_EQ(text("Two Pages.PDF"), firstLine + u'\n' + secondLine);
}

TEST_F(PdfReading, FindsNothingOnAnEmptyPage) {
    {
        QPdfWriter writer(path("empty.pdf"));
        const QPainter painter(&writer);
    }
    EXPECT_EQ(failure("empty.pdf"), 7);
}

TEST_F(PdfReading, RefusesAPageThatIsLargerThanAnyPaper) {
    writePdf(path("wall.pdf"), {14400, 14400});
    EXPECT_EQ(read("wall.pdf"), Result<QString>(Failure{5, {}}));
}

TEST_F(PdfReading, CannotOpenWhatIsNoPdf) {
    write("text.pdf", "Not a document, though it is called one.");
    write("empty.pdf", {});
    write("pageless.pdf",
          "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n2 0 obj<</Type/Pages/Kids[]/Count 0>>endobj\n"
          "trailer<</Root 1 0 R>>\n%%EOF\n");
    const QByteArray key(32, 'k');
    write("locked.pdf",
          "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj\n"
          "3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 200 100]>>endobj\n4 0 obj<</Filter/Standard/V 1/R 2/P -4/O(" +
              key + ")/U(" + key + ")>>endobj\ntrailer<</Root 1 0 R/Encrypt 4 0 R/ID[(a)(a)]>>\n%%EOF\n");
    for (const char* name : {"text.pdf", "empty.pdf", "pageless.pdf", "locked.pdf"}) {
        EXPECT_EQ(read(name), Result<QString>(Failure{4, QStringLiteral("couldn't open the PDF")})) << name;
    }
}

// Wherever a document was cut off, reading ends, with its text or with a failure.
TEST_F(PdfReading, SurvivesACutDocument) {
    writePdf(path("whole.pdf"), {300, 200});
    QFile file(path("whole.pdf"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray whole = file.readAll();
    for (int part = 1; part < 10; ++part) {
        write("cut.pdf", whole.left(whole.size() * part / 10));
        const Result<QString> result = read("cut.pdf");
        if (const auto* why = std::get_if<Failure>(&result)) {
            EXPECT_TRUE(why->code == 4 || why->code == 6 || why->code == 7) << part << ": " << why->code;
        }
    }
}

}  // namespace
