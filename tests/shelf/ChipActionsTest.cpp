#include <gtest/gtest.h>

#include "platform/FileUrls.h"
#include "shelf/ChipActions.h"
#include "support/Creature.h"
#include "support/TestFolder.h"

using namespace Qt::StringLiterals;

namespace {

struct ActionsFixture : CreatureFixture, TestFolder {
    MemoryWorkspace workspace;
    MemorySharing sharing;
    ChipActions actions{m, shelf, workspace, sharing};

    static QString titles(const QList<MenuItem>& menu) {
        QStringList list;
        for (const MenuItem& item : menu) {
            list.append(item.isSeparator() ? u"-"_s : item.title);
            if (!item.submenu.isEmpty()) list.last() += u'(' + titles(item.submenu) + u')';
        }
        return list.join(u'|');
    }
    static void choose(const QList<MenuItem>& menu, const char* title) {
        for (const MenuItem& item : menu) {
            if (item.title == QString::fromUtf8(title) && item.action) return item.action();
            choose(item.submenu, title);
        }
    }
};

TEST(ChipMenu, ListsWhatTheThingAllows) {
    ActionsFixture f;
    const QString chew = u"-|Chew(Into a JPEG|Into a PNG|Smaller)|"_s, head = u"Open|Reveal in Finder|Share…|"_s,
                  read = u"Read the text|"_s, tail = u"-|Remove"_s;
    const std::pair<QString, QStringList> cases[] = {
        {chew + read, u"a.png a.JPG a.jpeg a.heic a.HEIF a.tiff a.tif a.webp a.gif x.y.bmp"_s.split(u' ')},
        {read, {u"a.pdf"_s}},
        {{}, {u"notes.txt"_s, u"png"_s, u"a.png.txt"_s}}};
    for (const auto& [own, names] : cases)
        for (const QString& name : names)
            EXPECT_EQ(f.titles(f.actions.menu(QUrl(u"file:///"_s + name))), head + own + tail) << name.toStdString();
    EXPECT_EQ(f.titles(f.actions.menu(Bite::note(u"x"_s))), u"Copy|-|Remove"_s);
    EXPECT_EQ(f.titles(f.actions.menu(Bite::link(QUrl(u"https://a.example"_s)))), u"Open|Share…|-|Remove"_s);
    EXPECT_EQ(f.titles(f.actions.menu(HeldTimer{})), u"Remove"_s);
}

TEST(ChipMenu, DoesWhatItSays) {
    ActionsFixture f;
    const QUrl image = fileUrl(f.write("a.png", "")), text(u"file:///p/b.txt"_s);
    const Bite link = Bite::link(QUrl(u"https://a.example"_s)), note = Bite::note(u"soup"_s);
    f.m.items = QList{image, text};
    f.m.bites = QList{link, note};
    f.shelf.addTimer(5);
    const auto menu = f.actions.menu(image);
    f.choose(menu, "Open");
    f.choose(f.actions.menu(link), "Open");
    f.choose(menu, "Reveal in Finder");
    EXPECT_EQ(f.workspace.opened, (QList{image, *link.url()}));
    EXPECT_EQ(f.workspace.revealed, QList{image});
    f.choose(f.actions.menu(note), "Copy");
    EXPECT_EQ(f.pasteboard.texts, QStringList{u"soup"_s});
    f.choose(menu, "Into a PNG");
    f.jobs.runAll();
    EXPECT_EQ(f.worker.requests.value(0).value(1), u"png"_s);

    QString offered;
    f.actions.showSharing = [&](const QList<MenuItem>& items) { offered = f.titles(items); };
    f.sharing.list = {{u"Send by mail…"_s, {}, {}}};
    f.choose(menu, "Share…");
    EXPECT_EQ(offered, u"Send by mail…"_s);

    f.choose(menu, "Remove");
    f.choose(f.actions.menu(note), "Remove");
    f.choose(f.actions.menu(f.m.timers->first()), "Remove");
    EXPECT_EQ(f.m.items.get(), QList{text});
    EXPECT_EQ(f.m.bites.get(), QList{link});
    EXPECT_TRUE(f.m.timers->isEmpty());
}

}  // namespace
