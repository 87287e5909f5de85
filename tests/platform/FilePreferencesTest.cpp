#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cmath>
#include <limits>

#include "platform/linux/FilePreferences.h"
#include "platform/linux/ThreadQueues.h"

namespace {

class FilePreferencesTest : public testing::Test {
 protected:
    QString path() const { return folder_.filePath(QStringLiteral("preferences")); }

    static QByteArray contents(const QString& file) {
        QFile f(file);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("(cannot be read)");
    }
    QByteArray contents() const { return contents(path()); }

    void write(const QByteArray& bytes) const {
        QFile f(path());
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(bytes);
    }

    /// Opens the file, lets `use` work with it, and closes it, after which all is written.
    void with(const std::function<void(FilePreferences&)>& use) {
        FilePreferences preferences(path(), queue_);
        use(preferences);
    }

    static struct stat status(const QString& file) {
        struct stat found = {};
        ::lstat(QFile::encodeName(file).constData(), &found);
        return found;
    }
    static mode_t mode(const QString& file) { return status(file).st_mode; }
    static ino_t inode(const QString& file) { return status(file).st_ino; }

    QTemporaryDir folder_;
    ThreadSerialQueue queue_;
};

const QString kKey = QStringLiteral("glimmet.key");

TEST_F(FilePreferencesTest, ValuesOfEveryTypeSurviveARestart) {
    const QStringList texts{{},
                            QStringLiteral(" "),
                            QStringLiteral("two words = three"),
                            QStringLiteral("100 %41 %zz %"),
                            QStringLiteral("a\nb\r\n\tc"),
                            QString(QChar(0)) + QStringLiteral("x"),
                            QStringLiteral("Grüße 🐸 日本"),
                            QString(70000, u'x')};
    for (const QString& text : texts) {
        with([&](auto& p) { p.setText(kKey, text); });
        with([&](auto& p) { EXPECT_EQ(p.text(kKey), text); });
    }
    QByteArray everyByte;
    for (int i = 0; i < 256; ++i) everyByte.append(char(i));
    const QList<QList<QByteArray>> lists{
        {}, {""}, {"", ""}, {"/a/b c", "", "\n"}, {everyByte, everyByte}, {"list", "data x"}};
    for (const auto& list : lists) {
        with([&](auto& p) { p.setDataList(kKey, list); });
        with([&](auto& p) { EXPECT_EQ(p.dataList(kKey), list) << list.size(); });
    }
    for (const QByteArray& data : {QByteArray(""), everyByte, QByteArray(R"([{"note":{"_0":"a\/b = c"}}])")}) {
        with([&](auto& p) { p.setData(kKey, data); });
        with([&](auto& p) { EXPECT_EQ(p.data(kKey), data); });
    }
    using Limits = std::numeric_limits<double>;
    for (const double number : {0.0, 1.0, -0.1, 1 / 3.0, 1e300, Limits::denorm_min(), Limits::infinity()}) {
        with([&](auto& p) { p.setNumber(kKey, number); });
        with([&](auto& p) { EXPECT_EQ(p.number(kKey), number); });
    }
    with([](auto& p) { p.setBoolean(kKey, true); });
    with([](auto& p) { EXPECT_TRUE(p.boolean(kKey)); });
    EXPECT_EQ(contents(), "glimmet.key = bool true\n") << "one line, however often the key was set";
}

TEST_F(FilePreferencesTest, AValueOfAnotherTypeIsAbsent) {
    with([](auto& p) { p.setText(kKey, QStringLiteral("1")); });
    with([](auto& p) {
        EXPECT_FALSE(p.boolean(kKey));
        EXPECT_FALSE(p.number(kKey));
        EXPECT_FALSE(p.data(kKey));
        EXPECT_FALSE(p.dataList(kKey));
        EXPECT_FALSE(p.text(QStringLiteral("glimmet.other")));
        EXPECT_EQ(p.text(kKey), QStringLiteral("1"));
        p.setNumber(kKey, 2);
        EXPECT_FALSE(p.text(kKey));
        EXPECT_EQ(p.number(kKey), 2);
    });
}

/// What is read of a damaged file, and what of it is left after "glimmet.key" was set to 7.
TEST_F(FilePreferencesTest, WhatCannotBeReadStaysUntilItsKeyIsWritten) {
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
        write(c.before);
        with([&](auto& p) { EXPECT_EQ(p.number(kKey), c.read) << c.name; });
        EXPECT_EQ(contents(), c.before) << c.name << ": reading alone changes nothing";
        with([](auto& p) { p.setNumber(kKey, 7); });
        EXPECT_EQ(contents(), c.after) << c.name;
        with([&](auto& p) {
            EXPECT_EQ(p.number(kKey), 7) << c.name;
            EXPECT_FALSE(p.number(QStringLiteral("a"))) << c.name << ": a value cut off must not come to life";
        });
    }
}

TEST_F(FilePreferencesTest, WhatIsNoReadableFileIsMovedAside) {
    const struct {
        const char* name;
        std::function<void(const QByteArray& path)> make;
        mode_t kind;
    } cases[] = {
        {"pipe", [](const QByteArray& p) { ::mkfifo(p.constData(), 0600); }, S_IFIFO},
        {"folder", [](const QByteArray& p) { ::mkdir(p.constData(), 0700); }, S_IFDIR},
        {"too large",
         [](const QByteArray& p) {
             QFile f(QFile::decodeName(p));
             ASSERT_TRUE(f.open(QIODevice::WriteOnly));
             f.write("glimmet.key = bool true\n");
             f.resize(17 * 1024 * 1024);
         },
         S_IFREG},
    };
    const QString aside = path() + QStringLiteral(".unreadable");
    for (const auto& c : cases) {
        c.make(QFile::encodeName(path()));
        with([&](auto& p) { EXPECT_FALSE(p.boolean(kKey)) << c.name; });
        EXPECT_EQ(mode(path()) & S_IFMT, c.kind) << c.name << ": reading alone changes nothing";
        with([](auto& p) { p.setNumber(kKey, 7); });
        EXPECT_EQ(contents(), "glimmet.key = number 7\n") << c.name;
        EXPECT_EQ(mode(aside) & S_IFMT, c.kind) << c.name;
        with([&](auto& p) { EXPECT_EQ(p.number(kKey), 7) << c.name; });
        QFile::remove(path());
        if (c.kind == S_IFDIR)
            QDir().rmdir(aside);
        else
            QFile::remove(aside);
    }
}

TEST_F(FilePreferencesTest, IsForItsOwnerOnlyAndMakesItsFolder) {
    const QString sub = folder_.filePath(QStringLiteral("a/b"));
    { FilePreferences(sub + QStringLiteral("/preferences"), queue_).setBoolean(kKey, true); }
    EXPECT_EQ(mode(sub), S_IFDIR | 0700);
    EXPECT_EQ(mode(sub + QStringLiteral("/preferences")), S_IFREG | 0600);
    EXPECT_EQ(QDir(sub).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size(), 1) << "nothing else is left";
}

TEST_F(FilePreferencesTest, WritesThroughLinks) {
    const QString target = folder_.filePath(QStringLiteral("real"));
    const QString middle = folder_.filePath(QStringLiteral("middle"));
    for (const bool exists : {false, true}) {
        QFile::remove(path());
        QFile::remove(middle);
        ASSERT_TRUE(QFile::link(target, middle));
        ASSERT_TRUE(QFile::link(middle, path()));
        with([&](auto& p) {
            EXPECT_EQ(p.boolean(kKey), exists);
            p.setBoolean(kKey, true);
        });
        EXPECT_EQ(mode(path()) & S_IFMT, S_IFLNK);
        EXPECT_EQ(mode(middle) & S_IFMT, S_IFLNK);
        EXPECT_EQ(contents(target), "glimmet.key = bool true\n");
    }
}

TEST_F(FilePreferencesTest, GoesOnWithoutADiskAndTriesAgain) {
    // Not even the superuser can make a folder below a file.
    const QString blocker = folder_.filePath(QStringLiteral("folder"));
    ASSERT_TRUE(QFile(blocker).open(QIODevice::WriteOnly));
    const QString file = blocker + QStringLiteral("/preferences");
    {
        FilePreferences p(file, queue_);
        p.setNumber(kKey, 1);
        EXPECT_EQ(p.number(kKey), 1);
        std::promise<void> tried;
        queue_.run([&] { tried.set_value(); });
        tried.get_future().wait();
        ASSERT_TRUE(QFile::remove(blocker));
        p.setBoolean(QStringLiteral("b"), true);
    }
    EXPECT_EQ(contents(file), "glimmet.key = number 1\nb = bool true\n");
}

TEST_F(FilePreferencesTest, ABurstOfChangesEndsOnTheDiskWithTheLast) {
    with([](auto& p) {
        for (int i = 0; i <= 3000; ++i) p.setNumber(kKey, i);
        EXPECT_EQ(p.number(kKey), 3000);
    });
    EXPECT_EQ(contents(), "glimmet.key = number 3000\n");
}

/// Changes "number" and "text" in turn, always number first, and tells the pipe, until it is killed.
[[noreturn]] void writeForever(const QString& path, int pipe) {
    ThreadSerialQueue queue;
    FilePreferences p(path, queue);
    int i = int(p.number(QStringLiteral("number")).value_or(0));
    for (;;) {
        ++i;
        p.setNumber(QStringLiteral("number"), i);
        p.setText(QStringLiteral("text"), QString::number(i).repeated(2000));
        if (::write(pipe, "", 1) != 1) ::_exit(1);
    }
}

TEST_F(FilePreferencesTest, AKillAtAnyMomentLeavesEveryKeyOldOrNew) {
    double before = 0;
    for (int round = 0; round < 25; ++round) {
        int pipe[2];
        ASSERT_EQ(::pipe(pipe), 0);
        const pid_t child = ::fork();
        if (child == 0) writeForever(path(), pipe[1]);
        ::close(pipe[1]);
        // Killed a few changes after the file was replaced for the second time.
        char byte = 0;
        ino_t seen = inode(path());
        for (int replaced = 0, extra = 5 * round; replaced < 2 || extra > 0;) {
            ASSERT_EQ(::read(pipe[0], &byte, 1), 1);
            if (replaced >= 2) --extra;
            const ino_t now = inode(path());
            if (now != seen) ++replaced;
            seen = now;
        }
        ASSERT_EQ(::kill(child, SIGKILL), 0);
        ASSERT_EQ(::waitpid(child, nullptr, 0), child);
        ::close(pipe[0]);

        with([&](auto& p) {
            const double number = p.number(QStringLiteral("number")).value_or(0);
            const QString text = p.text(QStringLiteral("text")).value_or(QString());
            EXPECT_GT(number, before) << "what was kept once is not lost";
            before = number;
            const auto textOf = [](double n) { return n < 1 ? QString() : QString::number(n).repeated(2000); };
            EXPECT_TRUE(text == textOf(number) || text == textOf(number - 1)) << text.size() << " at " << number;
        });
    }
}

}  // namespace
