#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include "platform/linux/FilePreferences.h"
#include "platform/linux/ThreadQueues.h"

namespace {

const QString kBool = QStringLiteral("glimmet.hidden");
const QString kBites = QStringLiteral("glimmet.bites");
const QString kShelf = QStringLiteral("glimmet.shelf");

struct StoreFixture {
    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("sub/preferences"));
    ThreadSerialQueue queue;

    void write(const QByteArray& contents) {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
    }
    QByteArray read() const {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
};

TEST(FilePreferences, KeepEveryTypeAcrossARestart) {
    StoreFixture f;
    const QByteArray binary("\0\xff % = \n\r bite", 14);
    const QList<QByteArray> list{"/a b/c", QByteArray("x\ny"), QByteArray(), "100%"};
    {
        FilePreferences p(f.path, f.queue);
        p.setBoolean(kBool, true);
        p.setNumber(QStringLiteral("n"), 52.520006599999997);
        p.setText(QStringLiteral("t"), QStringLiteral("größer = \n\U0001F642"));
        p.setText(QStringLiteral("empty"), QString());
        p.setData(kBites, binary);
        p.setDataList(kShelf, list);
        p.setDataList(QStringLiteral("none"), {});
    }
    const FilePreferences p(f.path, f.queue);
    EXPECT_TRUE(p.boolean(kBool));
    EXPECT_EQ(p.number(QStringLiteral("n")), 52.520006599999997);
    EXPECT_EQ(p.text(QStringLiteral("t")), QStringLiteral("größer = \n\U0001F642"));
    EXPECT_EQ(p.text(QStringLiteral("empty")), QString());
    EXPECT_EQ(p.data(kBites), binary);
    EXPECT_EQ(p.dataList(kShelf), list);
    EXPECT_EQ(p.dataList(QStringLiteral("none")), QList<QByteArray>());
    const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther;
    EXPECT_EQ(QFileInfo(f.path).permissions() & others, 0);
    EXPECT_EQ(QFileInfo(QFileInfo(f.path).path()).permissions() & others, 0);
}

TEST(FilePreferences, AValueOfAnotherTypeIsAbsent) {
    StoreFixture f;
    f.write("glimmet.hidden = text true\nglimmet.bites = bool true\nglimmet.shelf = data x\nn = number 1e\n");
    const FilePreferences p(f.path, f.queue);
    EXPECT_FALSE(p.boolean(kBool));
    EXPECT_FALSE(p.data(kBites));
    EXPECT_FALSE(p.dataList(kShelf));
    EXPECT_FALSE(p.number(QStringLiteral("n")));
}

/// What is read of a damaged file, and what of it is left after "glimmet.key" was set to 7.
TEST(FilePreferences, WhatCannotBeReadStaysUntilItsKeyIsWritten) {
    StoreFixture f;
    const QString key = QStringLiteral("glimmet.key");
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
        {"another key is cut", "b = text x\na = number 52.5", {}, "b = text x\n" + seven + "a = number 52.5"},
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
        {
            const FilePreferences p(f.path, f.queue);
            EXPECT_EQ(p.number(key), c.read) << c.name;
        }
        EXPECT_EQ(f.read(), c.before) << c.name << ": reading alone changes nothing";
        { FilePreferences(f.path, f.queue).setNumber(key, 7); }
        EXPECT_EQ(f.read(), c.after) << c.name;
        const FilePreferences p(f.path, f.queue);
        EXPECT_EQ(p.number(key), 7) << c.name;
        EXPECT_FALSE(p.number(QStringLiteral("a"))) << c.name << ": a value cut off must not come to life";
    }
}

TEST(FilePreferences, WhatIsNoReadableFileIsKeptAside) {
    StoreFixture f;
    f.write(QByteArray(17 * 1024 * 1024, 'x'));
    {
        FilePreferences p(f.path, f.queue);
        p.setBoolean(kBool, true);
    }
    EXPECT_EQ(f.read(), "glimmet.hidden = bool true\n");
    EXPECT_EQ(QFileInfo(f.path + QStringLiteral(".unreadable")).size(), 17 * 1024 * 1024);

    StoreFixture pipe;
    QDir().mkpath(QFileInfo(pipe.path).path());
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe.path).constData(), 0600), 0);
    FilePreferences p(pipe.path, pipe.queue);  // must not wait for a writer
    EXPECT_FALSE(p.boolean(kBool));
}

TEST(FilePreferences, TryAgainAfterAFailedWrite) {
    StoreFixture f;
    QFile obstacle(f.folder.filePath(QStringLiteral("sub")));  // a file where the folder belongs
    ASSERT_TRUE(obstacle.open(QIODevice::WriteOnly));
    obstacle.close();
    FilePreferences p(f.path, f.queue);
    p.setBoolean(kBool, true);
    p.setData(kBites, "[]");
    EXPECT_TRUE(p.boolean(kBool));
    { FilePreferences waits(f.folder.filePath(QStringLiteral("other")), f.queue); }
    ASSERT_TRUE(obstacle.remove());
    p.setText(QStringLiteral("t"), QStringLiteral("x"));
    { FilePreferences waits(f.folder.filePath(QStringLiteral("other")), f.queue); }
    EXPECT_EQ(f.read(), "glimmet.hidden = bool true\nglimmet.bites = data []\nt = text x\n");
}

TEST(FilePreferences, ALinkedFileStaysALink) {
    StoreFixture f;
    const QString target = f.folder.filePath(QStringLiteral("dotfiles"));
    QFile file(target);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("glimmet.hidden = bool true\n");
    file.close();
    QDir().mkpath(QFileInfo(f.path).path());
    const QString middle = f.folder.filePath(QStringLiteral("middle"));
    ASSERT_TRUE(QFile::link(target, middle));
    ASSERT_TRUE(QFile::link(middle, f.path));
    {
        FilePreferences p(f.path, f.queue);
        EXPECT_TRUE(p.boolean(kBool));
        p.setBoolean(kBool, false);
    }
    EXPECT_TRUE(QFileInfo(f.path).isSymLink() && QFileInfo(middle).isSymLink());
    EXPECT_EQ(f.read(), "glimmet.hidden = bool false\n");
}

/// Writes two keys of several kilobytes in turn, and a byte into `pipe` each time, until it is killed. Each value is
/// all one letter.
[[noreturn]] void writeForever(const QString& path, int pipe) {
    ThreadSerialQueue queue;
    FilePreferences p(path, queue);
    for (char letter = 'a';; letter = letter == 'z' ? 'a' : char(letter + 1)) {
        p.setData(kBites, QByteArray(9000, letter));
        p.setDataList(kShelf, {QByteArray(5000, letter), QByteArray(5000, letter)});
        if (::write(pipe, "", 1) != 1) _exit(1);
    }
}

ino_t inode(const QString& path) {
    struct stat status = {};
    return stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_ino : 0;
}

TEST(FilePreferences, KilledAtAnyMomentTheyHoldOldOrNewValues) {
    StoreFixture f;
    for (int round = 0; round < 20; ++round) {
        int pipe[2];
        ASSERT_EQ(::pipe(pipe), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) writeForever(f.path, pipe[1]);
        close(pipe[1]);
        // Until the file was replaced a second time, and then some changes more.
        int replaced = 0;
        ino_t seen = inode(f.path);
        for (int more = 5 * round; replaced < 2 || more > 0; more -= replaced >= 2) {
            char byte = 0;
            ASSERT_EQ(::read(pipe[0], &byte, 1), 1);
            const ino_t now = inode(f.path);
            replaced += now != seen;
            seen = now;
        }
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        close(pipe[0]);

        const FilePreferences p(f.path, f.queue);
        const auto bites = p.data(kBites);
        const auto shelf = p.dataList(kShelf);
        ASSERT_TRUE(bites && bites->size() == 9000 && shelf && shelf->size() == 2) << "round " << round;
        const char letter = bites->at(0);
        const char before = letter == 'a' ? 'z' : char(letter - 1);
        EXPECT_EQ(*bites, QByteArray(9000, letter));
        const char other = shelf->at(0).at(0);
        EXPECT_TRUE(other == letter || other == before) << letter << other;
        EXPECT_EQ(*shelf, QList<QByteArray>(2, QByteArray(5000, other)));
    }
}

}  // namespace
