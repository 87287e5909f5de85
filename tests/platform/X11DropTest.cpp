#include <QFile>
#include <QTemporaryDir>

#include "X11DropPanel.h"
#include "support/DragTools.h"

namespace {
const QString textType = QStringLiteral("text/plain;charset=utf-8");
const QString uriType = QStringLiteral("text/uri-list");

/// Drags from a real toolkit, which asks and answers as programs do.
class X11Drop : public X11Test {
 protected:
    /// Drags what `arguments` offer onto the panel and lets go there.
    void drop(const QList<QByteArray>& arguments, DragTool::Kind kind = DragTool::Kind::gtkSource) {
        source = std::make_unique<DragTool>(session(), kind, QPoint(100, 500), arguments);
        ASSERT_TRUE(source->drag(session(), pixel({320, 60})));
        ASSERT_TRUE(waitFor([&] { return panel.targeted == QList{true}; }));
        session().release(1);
        ASSERT_TRUE(waitFor([&] { return panel.drop != nullptr; }));
        EXPECT_EQ(panel.targeted, (QList{true, false}));
    }
    QByteArray fileWith(const QByteArray& contents) {
        QFile file(folder.filePath(QString::number(++files)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size());
        return file.fileName().toUtf8();
    }
    /// The drag's outcome as the source sees it.
    testing::AssertionResult sourceSaid(const char* line) {
        return waitFor([&, text = QString::fromLatin1(line)] { return source->said(text); });
    }

    QTemporaryDir folder;
    int files = 0;
    DropPanel panel{connection, sampler, loop};
    std::unique_ptr<DragTool> source;
};

TEST_F(X11Drop, ReadsEveryFormThatProgramsOffer) {
    const QByteArray huge = QByteArray(5 << 20, 'x') + "end", png = "\x89PNG\r\n\x1a\n" + QByteArray(5000, '\0');
    const QByteArray mozilla = QByteArray("h\0t\0t\0p\0:\0/\0/\0a\0\n\0A\0", 20);
    const struct {
        QList<QByteArray> offered;
        QStringList types;
        QByteArray bytes;  // of the first type
    } cases[] = {
        {{"text/uri-list=file:///a\r\nfile:///b\r\n", "application/x-color=red"},
         {uriType},
         "file:///a\r\nfile:///b\r\n"},
        {{"text/x-moz-url@" + fileWith(mozilla), "_NETSCAPE_URL=http://a\nA", "UTF8_STRING=http://a"},
         {QStringLiteral("text/x-moz-url"), QStringLiteral("_NETSCAPE_URL"), textType},
         mozilla},
        {{"image/png@" + fileWith(png), "text/uri-list=http://a/b.png"}, {QStringLiteral("image/png"), uriType}, png},
        {{"STRING=caf\xe9?", "UTF8_STRING=caf\xc3\xa9"}, {textType}, "caf\xc3\xa9"},
        {{"STRING@" + fileWith("caf\xe9")}, {textType}, "caf\xc3\xa9"},
        {{"text/plain@" + fileWith("caf\xe9")}, {textType}, "caf\xc3\xa9"},
        {{"text/plain=caf\xc3\xa9"}, {textType}, "caf\xc3\xa9"},
        {{"UTF8_STRING@" + fileWith("a\xff\xfe b")}, {textType}, "a\xef\xbf\xbd\xef\xbf\xbd b"},
        {{"UTF8_STRING@" + fileWith(huge)}, {textType}, huge.left(1 << 20)},
        {{"image/jpeg@" + fileWith(huge)}, {QStringLiteral("image/jpeg")}, huge},
    };
    for (const auto& [offered, types, bytes] : cases) {
        SCOPED_TRACE(offered.first().left(60).toStdString());
        panel.targeted.clear();
        drop(offered);
        if (HasFatalFailure()) return;
        EXPECT_EQ(panel.drop->types(), types);
        EXPECT_TRUE(panel.loads(types.first()) == bytes);
        EXPECT_FALSE(source->said(QStringLiteral("drag-end copy"))) << "the drop is still being read";
        panel.drop.reset();
        EXPECT_TRUE(sourceSaid("drag-end copy"));
        EXPECT_FALSE(source->said(QStringLiteral("delete")));
    }
}

TEST_F(X11Drop, TakesACopyFromQt) {
    drop({"text/uri-list=file:///a%20b", "text/plain=caf\xc3\xa9"}, DragTool::Kind::qtSource);
    ASSERT_NE(panel.drop, nullptr);
    EXPECT_EQ(panel.loads(uriType), "file:///a%20b\r\n");
    EXPECT_EQ(panel.loads(textType), "caf\xc3\xa9");
    panel.drop.reset();
    EXPECT_TRUE(sourceSaid("drag-end copy"));
}

TEST_F(X11Drop, IsRefusedWhereThePanelDoesNotAcceptItOrCannotUseIt) {
    const struct {
        bool accepts;
        QByteArray offered;
    } cases[] = {{false, "text/uri-list=file:///a\r\n"}, {true, "application/x-color=red"}};
    for (const auto& [accepts, offered] : cases) {
        panel.accepts = accepts;
        source = std::make_unique<DragTool>(session(), DragTool::Kind::gtkSource, QPoint(100, 500), QList{offered});
        ASSERT_TRUE(source->drag(session(), pixel({320, 60})));
        if (!accepts) {
            ASSERT_TRUE(waitFor([&] { return panel.asked > 0; }));
        }
        session().release(1);
        ASSERT_TRUE(sourceSaid("drag-end none"));
        EXPECT_TRUE(panel.targeted.empty());
        EXPECT_EQ(panel.drop, nullptr);
    }
}

TEST_F(X11Drop, TargetsThePanelOnlyWhileTheDragIsOverIt) {
    source =
        std::make_unique<DragTool>(session(), DragTool::Kind::gtkSource, QPoint(100, 500), QList<QByteArray>{"TEXT=a"});
    const QPoint over = pixel({320, 60}), away(900, 600);
    ASSERT_TRUE(source->drag(session(), over));
    ASSERT_TRUE(waitFor([&] { return panel.targeted == QList{true}; }));
    session().glide(over, away, 10, 5);
    ASSERT_TRUE(waitFor([&] { return panel.targeted == (QList{true, false}); }));
    session().glide(away, over, 10, 5);
    ASSERT_TRUE(waitFor([&] { return panel.targeted == (QList{true, false, true}); }));
    panel.accepts = false;
    session().moveTo(over + QPoint(3, 3));
    ASSERT_TRUE(waitFor([&] { return panel.targeted == (QList{true, false, true, false}); }));
    panel.accepts = true;
    session().moveTo(over);
    ASSERT_TRUE(waitFor([&] { return panel.targeted == (QList{true, false, true, false, true}); }));
    source.reset();  // as a program that crashes
    ASSERT_TRUE(waitFor([&] { return panel.targeted.size() == 6; }));
    EXPECT_FALSE(panel.targeted.last());
}

}  // namespace
