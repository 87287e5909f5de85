#include <QProcess>

#include "X11Test.h"
#include "platform/linux/QtPasteboard.h"

namespace {

class X11Pasteboard : public X11Test {};

TEST_F(X11Pasteboard, GivesOtherProgramsTheText) {
    QtPasteboard pasteboard;
    const QString cases[] = {
        QStringLiteral("plain"),
        QStringLiteral("two\nlines\tand a tab \u00a0 "),
        QStringLiteral("\u00fc \u65e5\u672c \U0001f41b \u202e\u0301"),
        QString(3'000'000, u'\u00e9'),  // more than fits into one request
        QString(),
    };
    for (const QString& text : cases) {
        pasteboard.setString(text);
        for (int i = 0; i < 2; ++i) {  // and again
            QProcess xclip;
            xclip.start(QStringLiteral("xclip"),
                        QStringLiteral("-selection clipboard -out -target UTF8_STRING").split(u' '));
            ASSERT_TRUE(waitFor([&] { return xclip.state() == QProcess::NotRunning; }));
            EXPECT_TRUE(xclip.readAllStandardOutput() == text.toUtf8()) << text.left(20).toStdString();
        }
    }
}

}  // namespace
