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
    EXPECT_EQ(QFileInfo(f.path).permissions() & (QFile::ReadGroup | QFile::ReadOther), 0);
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

TEST(FilePreferences, ReadWhatCanBeReadAndKeepTheRestUntilItsKeyIsWritten) {
    StoreFixture f;
    const QByteArray garbage = QByteArray::fromHex("7f454c46000102203d20fffe");
    f.write("glimmet.bites = data %4\n" + garbage +
            "\nglimmet.hidden = bool true\nwhat is this\nglimmet.shelf = list /a /b");
    {
        FilePreferences p(f.path, f.queue);
        EXPECT_TRUE(p.boolean(kBool));
        EXPECT_FALSE(p.data(kBites));
        EXPECT_FALSE(p.dataList(kShelf)) << "the line was cut off";
        p.setBoolean(kBool, false);
    }
    EXPECT_TRUE(f.read().contains(garbage + '\n'));
    EXPECT_TRUE(f.read().startsWith("glimmet.bites = data %4\n"));
    EXPECT_TRUE(f.read().contains("what is this\n"));
    EXPECT_TRUE(f.read().endsWith("\nglimmet.shelf = list /a /b")) << "a cut line made whole would be believed";
    {
        FilePreferences p(f.path, f.queue);
        p.setData(kBites, "[]");
    }
    EXPECT_FALSE(f.read().contains("%4"));
    EXPECT_EQ(f.read().count("glimmet.bites"), 1);
    EXPECT_TRUE(f.read().contains(garbage));
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
    ASSERT_TRUE(QFile::link(target, f.path));
    {
        FilePreferences p(f.path, f.queue);
        EXPECT_TRUE(p.boolean(kBool));
        p.setBoolean(kBool, false);
    }
    EXPECT_TRUE(QFileInfo(f.path).isSymLink());
    EXPECT_EQ(f.read(), "glimmet.hidden = bool false\n");
}

/// Writes two keys of several kilobytes in turn until it is killed. Each value is all one letter.
[[noreturn]] void writeForever(const QString& path) {
    ThreadSerialQueue queue;
    FilePreferences p(path, queue);
    for (char letter = 'a';; letter = letter == 'z' ? 'a' : char(letter + 1)) {
        p.setData(kBites, QByteArray(9000, letter));
        p.setDataList(kShelf, {QByteArray(5000, letter), QByteArray(5000, letter)});
    }
}

TEST(FilePreferences, KilledAtAnyMomentTheyHoldOldOrNewValues) {
    StoreFixture f;
    int written = 0;
    for (int round = 0; round < 12; ++round) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) writeForever(f.path);
        usleep(useconds_t(5000 + round * 3700));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        if (!QFileInfo::exists(f.path)) continue;
        ++written;
        const FilePreferences p(f.path, f.queue);
        const auto bites = p.data(kBites);
        ASSERT_TRUE(bites) << "round " << round;
        EXPECT_EQ(*bites, QByteArray(9000, bites->at(0)));
        if (const auto shelf = p.dataList(kShelf)) {
            ASSERT_EQ(shelf->size(), 2);
            EXPECT_EQ(shelf->at(0), QByteArray(5000, shelf->at(0).at(0)));
            EXPECT_EQ(shelf->at(1), shelf->at(0));
        }
    }
    EXPECT_GT(written, 6);
}

}  // namespace
