#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include "platform/linux/FilePreferences.h"
#include "support/ManualLoop.h"
#include "support/MemoryPorts.h"

namespace {

const QString kBool = QStringLiteral("glimmet.hidden");
const QString kBites = QStringLiteral("glimmet.bites");
const QString kShelf = QStringLiteral("glimmet.shelf");
const QString kKey = QStringLiteral("glimmet.key");
using Access = FilePreferences::Access;

/// A preferences file in a folder of its own; what is asked of the disk is done at once.
struct StoreFixture {
    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("sub/preferences"));
    ManualClock clock;
    ManualLoop loop{clock};
    InlineQueue queue;

    std::unique_ptr<FilePreferences> open(Access access = Access::exclusive) {
        auto preferences = std::make_unique<FilePreferences>(path, access, queue, loop);
        loop.drain();
        return preferences;
    }
    void write(const QByteArray& contents, const char* suffix = "") {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path + QLatin1String(suffix));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
    }
    QByteArray read(const char* suffix = "") const {
        QFile file(path + QLatin1String(suffix));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
};

TEST(FilePreferences, KeepEveryTypeAcrossARestart) {
    StoreFixture f;
    const QString number = QStringLiteral("glimmet.n"), text = QStringLiteral("glimmet.t"),
                  empty = QStringLiteral("glimmet.empty"), none = QStringLiteral("glimmet.none");
    const QByteArray binary("\0\xff % = \n\r bite", 14);
    const QList<QByteArray> list{"/a b/c", QByteArray("x\ny"), QByteArray(), "100%"};
    {
        const auto p = f.open();
        p->setBoolean(kBool, true);
        p->setNumber(number, 52.520006599999997);
        p->setText(text, QStringLiteral("größer = \n\U0001F642"));
        p->setText(empty, QString());
        p->setData(kBites, binary);
        p->setDataList(kShelf, list);
        p->setDataList(none, {});
    }
    const auto p = f.open();
    EXPECT_TRUE(p->boolean(kBool));
    EXPECT_EQ(p->number(number), 52.520006599999997);
    EXPECT_EQ(p->text(text), QStringLiteral("größer = \n\U0001F642"));
    EXPECT_EQ(p->text(empty), QString());
    EXPECT_EQ(p->data(kBites), binary);
    EXPECT_EQ(p->dataList(kShelf), list);
    EXPECT_EQ(p->dataList(none), QList<QByteArray>());
    EXPECT_FALSE(p->boolean(number) || p->data(text) || p->text(kBites) || p->dataList(kBites) || p->number(kBool))
        << "of another type";
    const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther;
    EXPECT_EQ(QFileInfo(f.path).permissions() & others, 0);
    EXPECT_EQ(QFileInfo(QFileInfo(f.path).path()).permissions() & others, 0);
}

/// What is read of a damaged file, and what of it is left after "glimmet.key" was set to 7.
TEST(FilePreferences, WhatCannotBeReadStaysUntilItsKeyIsWritten) {
    StoreFixture f;
    const QByteArray seven = "glimmet.key = number 7\n";
    const struct {
        const char* name;
        QByteArray before;
        std::optional<double> read;
        QByteArray after;
    } cases[] = {
        {"empty", "", {}, seven},
        {"good", "glimmet.key = number 5\n", 5, seven},
        {"cut", "a = bool true\nglimmet.key = number 5", {}, "a = bool true\n" + seven},
        {"cut after the value", "glimmet.key = number 5\nglimmet.key = num", 5, seven},
        {"another key is cut",
         "b = text x\nglimmet.a = number 52.5",
         {},
         "b = text x\n" + seven + "glimmet.a = number 52.5"},
        {"cut inside its name", "glimmet.ke", {}, seven + "glimmet.ke"},
        {"no number", "glimmet.key = number five\nb = text x\n", {}, seven + "b = text x\n"},
        {"no type", "glimmet.key = \n", {}, seven},
        {"unknown type", "glimmet.key = colour red\n", {}, seven},
        {"stray text", "# mine\n\nglimmet.key = number 5\n=\n = \n", 5, "# mine\n\n" + seven + "=\n = \n"},
        {"binary value", "glimmet.key = number 5\x01\n", {}, seven},
        {"binary garbage", QByteArray("\0\xff\xfe = \n\x80\n", 9), {}, QByteArray("\0\xff\xfe = \n\x80\n", 9) + seven},
        {"carriage returns", "a = bool true\r\nglimmet.key = number 5\r\n", {}, "a = bool true\r\n" + seven},
        {"twice", "glimmet.key = number 4\na = bool true\nglimmet.key = number 5\n", 5, seven + "a = bool true\n"},
        {"bad percent code", "glimmet.key = text %4\n", {}, seven},
        {"key with spaces", "glimmet.key  = number 5\n", {}, "glimmet.key  = number 5\n" + seven},
    };
    for (const auto& c : cases) {
        f.write(c.before);
        EXPECT_EQ(f.open()->number(kKey), c.read) << c.name;
        EXPECT_EQ(f.read(), c.before) << c.name << ": reading alone changes nothing";
        f.open()->setNumber(kKey, 7);
        EXPECT_EQ(f.read(), c.after) << c.name;
        const auto p = f.open();
        EXPECT_EQ(p->number(kKey), 7) << c.name;
        EXPECT_FALSE(p->number(QStringLiteral("glimmet.a"))) << c.name << ": a value cut off must not come to life";
    }
}

TEST(FilePreferences, WhatSomebodyElseWroteMeanwhileStays) {
    StoreFixture f;
    f.write("glimmet.key = number 1\nglimmet.hidden = bool true\n");
    const auto p = f.open();
    p->setNumber(kKey, 2);
    f.write("glimmet.notch = text 200x32\nglimmet.key = number 3\nglimmet.hidden = bool false\n# mine");
    p->setData(kBites, "[]");
    EXPECT_EQ(f.read(),
              "glimmet.notch = text 200x32\nglimmet.key = number 3\nglimmet.hidden = bool false\n"
              "glimmet.bites = data []\n# mine");
    QFile::remove(f.path);
    p->setNumber(kKey, 4);
    EXPECT_TRUE(f.read().contains("glimmet.key = number 4\n") && f.read().contains("bites"))
        << "nothing is lost with it";
}

TEST(FilePreferences, BelongToOneProgram) {
    StoreFixture f;
    f.write("glimmet.key = number 1\n");
    for (const char* left : {".new-999999999", ".new-x", ".new-1"}) f.write("half", left);
    auto first = f.open();
    EXPECT_FALSE(QFile::exists(f.path + QStringLiteral(".new-999999999"))) << "of a process that died";
    EXPECT_TRUE(QFile::exists(f.path + QStringLiteral(".new-x")) && QFile::exists(f.path + QStringLiteral(".new-1")));
    {
        FilePreferences second(f.path, Access::exclusive, f.queue, f.loop);
        bool taken = false;
        second.onTaken = [&] { taken = true; };
        f.loop.drain();
        EXPECT_TRUE(taken && !second.isRead());
        second.setNumber(kKey, 2);
    }
    const auto reader = f.open(Access::readOnly);
    EXPECT_EQ(reader->number(kKey), 1);
    reader->setNumber(kKey, 3);
    EXPECT_EQ(f.read(), "glimmet.key = number 1\n");
    first.reset();
    EXPECT_TRUE(f.open()->isRead()) << "the lock ends with its program";
}

TEST(FilePreferences, WhatIsNoReadableFileIsKeptAside) {
    StoreFixture f;
    const QString taken = f.path + QStringLiteral(".unreadable");
    ASSERT_TRUE(QDir().mkpath(taken + QStringLiteral("/full")));
    f.write("older", ".unreadable-2");
    f.write(QByteArray(17 * 1024 * 1024, 'x'));
    f.open()->setBoolean(kBool, true);
    EXPECT_EQ(f.read(), "glimmet.hidden = bool true\n");
    EXPECT_EQ(f.read(".unreadable-2"), "older");
    EXPECT_EQ(f.read(".unreadable-3").size(), 17 * 1024 * 1024);

    StoreFixture pipe;
    QDir().mkpath(QFileInfo(pipe.path).path());
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe.path).constData(), 0600), 0);
    EXPECT_FALSE(pipe.open()->boolean(kBool)) << "must not wait for a writer";
}

TEST(FilePreferences, WhatWasWrittenCanBeReadAgain) {
    StoreFixture f;
    {
        const auto p = f.open();
        p->setNumber(kKey, 1);
        p->setData(kBites, QByteArray(5 * 1024 * 1024, 'x'));
        p->setDataList(kShelf, {"/a"});
    }
    EXPECT_EQ(f.open()->number(kKey), 1);
    EXPECT_EQ(f.open()->dataList(kShelf), QList<QByteArray>{"/a"});
    // Others' lines leave no room.
    f.write(QByteArray(16 * 1024 * 1024 - 10, 'x'));
    f.open()->setNumber(kKey, 2);
    EXPECT_EQ(f.read().size(), 16 * 1024 * 1024 - 10);
    // Nobody's memory is large enough for what every short line might mean.
    f.write(QByteArray("glimmet.a = number 1\n").repeated(3) + "glimmet.shelf = list" +
            QByteArray(" x").repeated(100000) + '\n');
    EXPECT_FALSE(f.open()->dataList(kShelf));
}

TEST(FilePreferences, AreTriedAgainUntilTheyAreWritten) {
    StoreFixture f;
    const auto p = f.open();
    int complaints = 0;
    p->onSaveFailed = [&] { ++complaints; };
    // As on a full disk: no file may have any size.
    rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit none{0, before.rlim_max};
    const auto ignored = signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &none);
    p->setBoolean(kBool, true);
    p->setNumber(kKey, 1);
    f.loop.advance(3);
    p->setNumber(kKey, 2);
    f.loop.advance(600);
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(complaints, 1);
    EXPECT_EQ(f.read(), "");
    f.loop.advance(60);
    EXPECT_EQ(f.read(), "glimmet.hidden = bool true\nglimmet.key = number 2\n");
    EXPECT_EQ(f.loop.pending(), 0);

    setrlimit(RLIMIT_FSIZE, &none);
    p->setNumber(kKey, 3);
    f.loop.drain();
    setrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, ignored);
    EXPECT_EQ(complaints, 2);
    p->close();
    EXPECT_TRUE(f.read().contains("glimmet.key = number 3\n")) << "once more at the end";
    EXPECT_EQ(QDir(QFileInfo(f.path).path()).entryList(QDir::Files),
              (QStringList{QStringLiteral("preferences"), QStringLiteral("preferences.lock")}));
}

TEST(FilePreferences, WaitForADiskThatIsSilentAndWriteNothingBefore) {
    StoreFixture f;
    f.write("glimmet.key = number 1\nglimmet.hidden = bool true\n");
    HeldQueue silent;
    FilePreferences p(f.path, Access::exclusive, silent, f.loop);
    int reads = 0;
    p.whenRead([&] { ++reads; });
    p.waitUntilRead(std::chrono::milliseconds(1));
    p.setBoolean(kBool, false);
    f.loop.advance(100);
    EXPECT_TRUE(!p.isRead() && reads == 0 && !p.number(kKey));
    silent.runAll();
    f.loop.drain();
    EXPECT_TRUE(p.isRead() && reads == 1);
    EXPECT_EQ(p.number(kKey), 1);
    EXPECT_FALSE(p.boolean(kBool)) << "what was set here is newer";
    EXPECT_EQ(f.read(), "glimmet.key = number 1\nglimmet.hidden = bool false\n");
}

TEST(FilePreferences, ALinkedFileStaysALink) {
    StoreFixture f;
    f.write("glimmet.key = number 1\n");
    const QString target = f.folder.filePath(QStringLiteral("dotfiles"));
    const QString middle = f.folder.filePath(QStringLiteral("middle"));
    ASSERT_TRUE(QFile::rename(f.path, target) && QFile::link(target, middle) && QFile::link(middle, f.path));
    f.open()->setBoolean(kBool, false);
    EXPECT_TRUE(QFileInfo(f.path).isSymLink() && QFileInfo(middle).isSymLink());
    EXPECT_EQ(f.read(), "glimmet.key = number 1\nglimmet.hidden = bool false\n");
}

/// Writes two keys of several kilobytes in turn, each all of one letter, and a byte into `pipe` each time, until it is
/// killed.
[[noreturn]] void writeForever(StoreFixture& f, int pipe) {
    const auto p = f.open();
    for (char letter = 'a';; letter = letter == 'z' ? 'a' : char(letter + 1)) {
        p->setData(kBites, QByteArray(9000, letter));
        p->setDataList(kShelf, {QByteArray(5000, letter)});
        f.loop.drain();
        if (::write(pipe, "", 1) != 1) _exit(1);
    }
}

TEST(FilePreferences, KilledAtAnyMomentTheyHoldOldOrNewValues) {
    StoreFixture f;
    for (int round = 0; round < 20; ++round) {
        int pipe[2];
        ASSERT_EQ(::pipe(pipe), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) writeForever(f, pipe[1]);
        close(pipe[1]);
        char byte = 0;
        for (int i = 0; i <= round; ++i) ASSERT_EQ(::read(pipe[0], &byte, 1), 1);
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        close(pipe[0]);

        const auto p = f.open();
        const QByteArray bites = p->data(kBites).value_or(QByteArray());
        const QByteArray shelf = p->dataList(kShelf).value_or(QList<QByteArray>()).value(0);
        ASSERT_TRUE(bites.size() == 9000 && shelf.size() == 5000) << "round " << round;
        EXPECT_EQ(bites, QByteArray(9000, bites[0]));
        EXPECT_EQ(shelf, QByteArray(5000, shelf[0]));
        EXPECT_TRUE(shelf[0] == bites[0] || shelf[0] == (bites[0] == 'a' ? 'z' : bites[0] - 1));
    }
}

}  // namespace
