#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <QDir>
#include <QFileInfo>
#include <fstream>

#include "platform/linux/FilePreferences.h"
#include "support/ManualLoop.h"
#include "support/MemoryPorts.h"
#include "support/TestFolder.h"

namespace {

const QString kBool = QStringLiteral("glimmet.hidden");
const QString kBites = QStringLiteral("glimmet.bites");
const QString kShelf = QStringLiteral("glimmet.shelf");
const QString kKey = QStringLiteral("glimmet.key");
constexpr qsizetype kMegabyte = 1024 * 1024;

/// A preferences file in a folder of its own; what is asked of the disk is done at once.
class PreferencesTest : public testing::Test {
 protected:
    std::unique_ptr<FilePreferences> open() {
        auto preferences = std::make_unique<FilePreferences>(path, FilePreferences::Access::exclusive, queue, loop);
        loop.drain();
        return preferences;
    }
    void write(const QByteArray& contents, const char* suffix = "") const { folder.write(name + suffix, contents); }
    QByteArray read(const char* suffix = "") const { return folder.read(name + suffix); }

    TestFolder folder;
    const QByteArray name = "sub/preferences";
    const QString path = QString::fromUtf8(folder.path(name));
    ManualClock clock;
    ManualLoop loop{clock};
    InlineQueue queue;
};

TEST_F(PreferencesTest, KeepEveryTypeAcrossARestart) {
    const QString texts[] = {QStringLiteral("größer = \n\U0001F642"), QString()};
    const QByteArray binary("\0\xff % = \n\r bite", 14);
    const QList<QByteArray> lists[] = {{"/a b/c", QByteArray("x\ny"), QByteArray(), "100%"}, {}};
    {
        const auto p = open();
        p->setBoolean(kBool, true);
        p->setNumber(kKey, 52.520006599999997);
        p->setData(kBites, binary);
        for (int i = 0; i < 2; ++i) {
            p->setText(kKey + QChar(u'a' + i), texts[i]);
            p->setDataList(kShelf + QChar(u'a' + i), lists[i]);
        }
    }
    const auto p = open();
    EXPECT_TRUE(p->boolean(kBool));
    EXPECT_EQ(p->number(kKey), 52.520006599999997);
    EXPECT_EQ(p->data(kBites), binary);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(p->text(kKey + QChar(u'a' + i)), texts[i]);
        EXPECT_EQ(p->dataList(kShelf + QChar(u'a' + i)), lists[i]);
    }
    EXPECT_FALSE(p->boolean(kKey) || p->text(kBites) || p->dataList(kBites) || p->number(kBool)) << "of another type";
    const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther;
    for (const QString& file : {path, QFileInfo(path).path()}) EXPECT_EQ(QFileInfo(file).permissions() & others, 0);
}

/// What is read of a damaged file, and what of it is left after "glimmet.key" was set to 7.
TEST_F(PreferencesTest, WhatCannotBeReadStaysUntilItsKeyIsWritten) {
    const QByteArray seven = "glimmet.key = number 7\n";
    const struct {
        QByteArray before;
        std::optional<double> read;
        QByteArray after;
    } cases[] = {
        {"glimmet.key = number 5\n", 5, seven},
        {"a = bool true\nglimmet.key = number 5", {}, "a = bool true\n" + seven},
        {"glimmet.key = number 5\nglimmet.key = num", 5, seven},
        {"b = text x\nglimmet.a = number 52.5", {}, "b = text x\n" + seven + "glimmet.a = number 52.5"},
        {"glimmet.key = number five\nb = text x\n", {}, seven + "b = text x\n"},
        {"# mine\n\nglimmet.key = number 5\n=\n = \n", 5, "# mine\n\n" + seven + "=\n = \n"},
        {QByteArray("\0\xff\xfe = \n\x80\n", 9), {}, QByteArray("\0\xff\xfe = \n\x80\n", 9) + seven},
        {"a = bool true\r\nglimmet.key = number 5\r\n", {}, "a = bool true\r\n" + seven},
        {"glimmet.key = number 4\na = bool true\nglimmet.key = number 5\n", 5, seven + "a = bool true\n"},
        {"glimmet.key  = number 5\n", {}, "glimmet.key  = number 5\n" + seven},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.before.constData());
        write(c.before);
        EXPECT_EQ(open()->number(kKey), c.read);
        EXPECT_EQ(read(), c.before) << "reading alone changes nothing";
        open()->setNumber(kKey, 7);
        EXPECT_EQ(read(), c.after);
        EXPECT_EQ(open()->number(kKey), 7);
        EXPECT_FALSE(open()->number(QStringLiteral("glimmet.a"))) << "a value cut off must not come to life";
    }
}

TEST_F(PreferencesTest, WhatSomebodyElseWroteMeanwhileStays) {
    write("glimmet.key = number 1\nglimmet.hidden = bool true\n");
    const auto p = open();
    p->setNumber(kKey, 2);
    const QByteArray others =
        "glimmet.notch = text 200x32\nglimmet.key = number 3\nglimmet.hidden = bool false\n# mine";
    write(others);
    std::ifstream before(folder.path(name).toStdString());
    p->setData(kBites, "[]");
    EXPECT_EQ(read(), QByteArray(others).replace("# mine", "glimmet.bites = data []\n# mine"));
    const std::string old{std::istreambuf_iterator(before), {}};
    EXPECT_EQ(old.c_str(), others) << "the file itself was written, and would be half one when the machine stops";
    folder.remove(name);
    p->setNumber(kKey, 4);
    EXPECT_TRUE(read().contains("glimmet.key = number 4\n") && read().contains("bites")) << "nothing is lost with it";
}

TEST_F(PreferencesTest, AreTidiedOfWhatADeadProcessLeft) {
    for (const char* left : {".new-999999999", ".new-x", ".new-1"}) write("half", left);
    open();
    EXPECT_FALSE(folder.has(name + ".new-999999999"));
    EXPECT_TRUE(folder.has(name + ".new-x") && folder.has(name + ".new-1"));
}

TEST_F(PreferencesTest, WhatIsNotAReadableFileIsKeptAsideAndNoneIsWritten) {
    write("in the way", ".unreadable/full");
    write("older", ".unreadable-2");
    write(QByteArray(17 * kMegabyte, 'x'));
    {
        const auto p = open();
        p->setNumber(kKey, 1);
        p->setData(kBites, QByteArray(5 * kMegabyte, 'x'));
    }
    EXPECT_EQ(read(".unreadable-2"), "older");
    EXPECT_EQ(read(".unreadable-3").size(), 17 * kMegabyte);
    EXPECT_EQ(read(), "glimmet.key = number 1\n") << "more than would be read";
    // Others' lines leave no room.
    write(QByteArray(16 * kMegabyte - 10, 'x'));
    open()->setNumber(kKey, 2);
    EXPECT_EQ(read().size(), 16 * kMegabyte - 10);
    // Nobody's memory is large enough for what every short line might mean.
    write("glimmet.shelf = list" + QByteArray(" x").repeated(100000) + '\n');
    EXPECT_FALSE(open()->dataList(kShelf));
    folder.remove(name);
    ASSERT_EQ(mkfifo(folder.path(name).constData(), 0600), 0);
    EXPECT_FALSE(open()->boolean(kBool)) << "must not wait for a writer";
}

TEST_F(PreferencesTest, AreTriedAgainUntilTheyAreWritten) {
    const auto p = open();
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
    loop.advance(3);
    p->setNumber(kKey, 2);
    loop.advance(600);
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(complaints, 1);
    EXPECT_EQ(read(), "");
    loop.advance(60);
    EXPECT_EQ(read(), "glimmet.hidden = bool true\nglimmet.key = number 2\n");
    EXPECT_EQ(loop.pending(), 0);

    setrlimit(RLIMIT_FSIZE, &none);
    p->setNumber(kKey, 3);
    loop.drain();
    setrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, ignored);
    EXPECT_EQ(complaints, 2);
    p->close();
    EXPECT_TRUE(read().contains("glimmet.key = number 3\n")) << "once more at the end";
    EXPECT_EQ(QFileInfo(path).dir().entryList(QDir::Files),
              (QStringList{QStringLiteral("preferences"), QStringLiteral("preferences.lock")}));
}

TEST_F(PreferencesTest, WaitForADiskThatIsSilentAndWriteNothingBefore) {
    write("glimmet.key = number 1\nglimmet.hidden = bool true\n");
    HeldQueue silent;
    FilePreferences p(path, FilePreferences::Access::exclusive, silent, loop);
    int reads = 0;
    p.whenRead([&] { ++reads; });
    p.waitUntilRead(std::chrono::milliseconds(1));
    p.setBoolean(kBool, false);
    loop.advance(100);
    EXPECT_TRUE(!p.isRead() && reads == 0 && !p.number(kKey));
    silent.runAll();
    loop.drain();
    EXPECT_TRUE(p.isRead() && reads == 1);
    EXPECT_EQ(p.number(kKey), 1);
    EXPECT_FALSE(p.boolean(kBool)) << "what was set here is newer";
    EXPECT_EQ(read(), "glimmet.key = number 1\nglimmet.hidden = bool false\n");
}

TEST_F(PreferencesTest, ALinkedFileStaysALink) {
    folder.write("dotfiles", "glimmet.key = number 1\n");
    folder.write("sub/other", "");
    const QString middle = QString::fromUtf8(folder.path("middle"));
    ASSERT_TRUE(QFile::link(QString::fromUtf8(folder.path("dotfiles")), middle) && QFile::link(middle, path));
    open()->setBoolean(kBool, false);
    EXPECT_TRUE(QFileInfo(path).isSymLink() && QFileInfo(middle).isSymLink());
    EXPECT_EQ(folder.read("dotfiles"), "glimmet.key = number 1\nglimmet.hidden = bool false\n");
}

}  // namespace
