#include <gtest/gtest.h>

#include "shelf/ChipActions.h"
#include "support/Creature.h"

namespace {

QUrl file(const char* path) {
    return QUrl::fromLocalFile(QString::fromUtf8(path));
}

QJsonObject failed(int code) {
    return {{QStringLiteral("error"),
             QJsonObject{{QStringLiteral("domain"), QStringLiteral("chew")}, {QStringLiteral("code"), code}}}};
}

TEST(Chew, HoldsTheResultAfterAMomentOfChewing) {
    CreatureFixture f;
    f.m.items = QList{file("/p/photo.jpg")};
    f.worker.answer = QJsonObject{{QStringLiteral("file"), QStringLiteral("file:///p/photo%20-small.jpg")}};
    f.m.chew(file("/p/photo.jpg"), Chewer::Mode::smaller);
    EXPECT_TRUE(f.m.chewing);
    f.m.chew(file("/p/other.jpg"), Chewer::Mode::toPNG);
    f.m.readText(file("/p/other.jpg"));
    f.jobs.runAll();
    f.loop.advance(1.09);
    EXPECT_TRUE(f.m.chewing);
    EXPECT_EQ(f.m.items->size(), 1);
    f.loop.advance(0.02);
    EXPECT_FALSE(f.m.chewing);
    EXPECT_EQ(f.m.items->value(1), file("/p/photo -small.jpg"));
    EXPECT_EQ(f.m.swallowCount, 1);
    EXPECT_EQ(f.m.worryCount, 0);
    ASSERT_EQ(f.worker.requests.size(), 1) << "what came meanwhile is dropped";
    EXPECT_EQ(f.worker.requests[0].mid(0, 3),
              (QStringList{QStringLiteral("chew"), QStringLiteral("smaller"), QStringLiteral("file:///p/photo.jpg")}));
}

TEST(Chew, EveryFailureOnlyWorries) {
    for (const auto& answer : {std::optional<QJsonObject>(), std::optional(failed(1)), std::optional(QJsonObject())}) {
        CreatureFixture f;
        f.worker.answer = answer;
        f.m.chew(file("/p/a.png"), Chewer::Mode::toJPEG);
        f.jobs.runAll();
        f.loop.advance(1.2);
        f.m.readText(file("/p/a.png"));
        f.jobs.runAll();
        f.loop.advance(1.2);
        EXPECT_FALSE(f.m.chewing);
        EXPECT_EQ(f.m.worryCount, 2);
        EXPECT_TRUE(f.m.items->isEmpty() && f.m.bites->isEmpty() && f.pasteboard.texts.isEmpty());
        EXPECT_EQ(f.m.swallowCount + f.m.boopCount, 0);
    }
}

TEST(Chewer, PassesTheWorkersErrorsOn) {
    MemoryWorker worker;
    Chewer chewer(worker);
    EXPECT_EQ(std::get<ChewError>(chewer.readText(file("/a.pdf"))).domain, QStringLiteral("worker"));
    worker.answer = failed(7);
    const auto error = std::get<ChewError>(chewer.readText(file("/a.pdf")));
    EXPECT_EQ(error.domain, QStringLiteral("chew"));
    EXPECT_EQ(error.code, 7);
}

TEST(ReadText, GoesWholeToTheClipboardAndItsBeginningToTheShelf) {
    CreatureFixture f;
    const QString text(1000, u'x');
    f.worker.answer = QJsonObject{{QStringLiteral("text"), text}};
    for (int i = 1; i <= 2; ++i) {
        f.m.asleep = true;
        f.m.readText(file("/p/page.pdf"));
        f.jobs.runAll();
        f.loop.advance(1.2);
        EXPECT_EQ(f.pasteboard.texts.size(), i) << "also when the note is held already";
        EXPECT_EQ(f.m.boopCount, i);
        EXPECT_FALSE(f.m.asleep);
    }
    EXPECT_EQ(f.pasteboard.texts.last(), text);
    EXPECT_EQ(f.m.bites.get(), QList{Bite::note(text.left(400))});
}

TEST(Chew, AModelThatIsGoneIsNotTouched) {
    CreatureFixture f;
    {
        NotchModel gone(f.clock, f.loop, f.shelf());
        gone.chew(file("/p/a.png"), Chewer::Mode::toJPEG);
        f.jobs.runAll();
    }
    f.loop.advance(2);
    EXPECT_EQ(f.worker.requests.size(), 1);
}

struct ActionsFixture : CreatureFixture {
    MemoryWorkspace workspace;
    MemorySharing sharing;
    ChipActions actions{m, workspace, pasteboard, sharing};
    QList<MenuItem> shared;

    ActionsFixture() {
        actions.showSharing = [this](const QList<MenuItem>& items) { shared = items; };
    }
    static QString titles(const QList<MenuItem>& menu) {
        QStringList list;
        for (const MenuItem& item : menu) {
            list.append(item.separator() ? QStringLiteral("-") : item.title);
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
    const QString chew = QStringLiteral("-|Chew(Into a JPEG|Into a PNG|Smaller)|");
    const QString head = QStringLiteral("Open|Reveal in Finder|Share…|"), read = QStringLiteral("Read the text|");
    const QString tail = QStringLiteral("-|Remove");
    for (const char* name :
         {"a.png", "a.JPG", "a.jpeg", "a.heic", "a.HEIF", "a.tiff", "a.tif", "a.webp", "a.gif", "x.y.bmp"})
        EXPECT_EQ(f.titles(f.actions.menu(QUrl::fromLocalFile(QStringLiteral("/") + QLatin1String(name)))),
                  head + chew + read + tail)
            << name;
    EXPECT_EQ(f.titles(f.actions.menu(file("/a.pdf"))), head + read + tail);
    for (const char* name : {"/notes.txt", "/png", "/a.png.txt"})
        EXPECT_EQ(f.titles(f.actions.menu(file(name))), head + tail);
    EXPECT_EQ(f.titles(f.actions.menu(Bite::note(QStringLiteral("x")))), QStringLiteral("Copy|-|Remove"));
    EXPECT_EQ(f.titles(f.actions.menu(Bite::link(QUrl(QStringLiteral("https://a.example"))))),
              QStringLiteral("Open|Share…|-|Remove"));
    EXPECT_EQ(f.titles(f.actions.menu(HeldTimer{})), QStringLiteral("Remove"));
}

TEST(ChipMenu, DoesWhatItSays) {
    ActionsFixture f;
    const QUrl image = file("/p/a.png");
    const Bite link = Bite::link(QUrl(QStringLiteral("https://a.example"))), note = Bite::note(QStringLiteral("soup"));
    f.m.items = QList{image, file("/p/b.txt")};
    f.m.bites = QList{link, note};
    f.m.addTimer(5);
    const auto menu = f.actions.menu(image);
    f.choose(menu, "Open");
    f.choose(menu, "Reveal in Finder");
    f.choose(f.actions.menu(link), "Open");
    EXPECT_EQ(f.workspace.opened, (QList{image, *link.url()}));
    EXPECT_EQ(f.workspace.revealed, QList{image});
    f.choose(f.actions.menu(note), "Copy");
    EXPECT_EQ(f.pasteboard.texts, QStringList{QStringLiteral("soup")});
    EXPECT_EQ(f.m.boopCount, 1);
    f.choose(menu, "Into a PNG");
    f.jobs.runAll();
    EXPECT_EQ(f.worker.requests.value(0).value(1), QStringLiteral("png"));

    f.sharing.list = {{QStringLiteral("Send by mail…"), {}, {}}};
    f.choose(menu, "Share…");
    EXPECT_EQ(f.titles(f.shared), QStringLiteral("Send by mail…"));

    f.choose(menu, "Remove");
    f.choose(f.actions.menu(note), "Remove");
    f.choose(f.actions.menu(f.m.timers->first()), "Remove");
    EXPECT_EQ(f.m.items.get(), QList{file("/p/b.txt")});
    EXPECT_EQ(f.m.bites.get(), QList{link});
    EXPECT_TRUE(f.m.timers->isEmpty());
}

}  // namespace
