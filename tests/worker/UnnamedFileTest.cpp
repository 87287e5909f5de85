#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "FileSystems.h"
#include "Images.h"
#include "platform/linux/UnnamedFile.h"

namespace {

struct UnnamedFileTest : testing::TestWithParam<FileSystem> {
    Folder folder;
};

TEST_P(UnnamedFileTest, AppearsWhenItIsCompleteAndReplacesNothing) {
    save(folder / "taken", QByteArray("mine"));
    on(GetParam(), [&] {
        auto file = UnnamedFile::in(folder.path);
        ASSERT_TRUE(file);
        const QByteArray contents(3 << 20, 'x');
        ASSERT_EQ(::write(file->descriptor(), contents.constData(), size_t(contents.size())), contents.size());
        EXPECT_EQ(QDir(QFile::decodeName(folder.path)).entryList(QDir::Files), QStringList{QStringLiteral("taken")});
        ASSERT_TRUE(file->finish());
        EXPECT_EQ(file->name("taken"), ResultFile::Naming::taken);
        EXPECT_EQ(file->name("no/such/folder"), ResultFile::Naming::failed);
        EXPECT_EQ(file->name("new"), ResultFile::Naming::done);
        file.reset();
        EXPECT_EQ(load(folder / "new"), contents);
        EXPECT_EQ(load(folder / "taken"), "mine");
        EXPECT_EQ(folder.names(), (QStringList{QStringLiteral("new"), QStringLiteral("taken")}));
    });
}

TEST_P(UnnamedFileTest, LeavesNothingWhenItsMakerIsKilled) {
    on(GetParam(), [&] {
        const pid_t maker = ::fork();
        if (maker == 0) {
            auto file = UnnamedFile::in(folder.path);
            if (file && ::write(file->descriptor(), "half", 4) == 4 && file->finish()) ::raise(SIGKILL);
            ::_exit(1);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(maker, &status, 0), maker);
        EXPECT_TRUE(WIFSIGNALED(status));
    });
    EXPECT_TRUE(folder.isSoon({}));
}

INSTANTIATE_TEST_SUITE_P(FileSystems, UnnamedFileTest, testing::ValuesIn(kFileSystems),
                         [](const auto& system) { return std::string(system.param.name); });

}  // namespace
