#include <fcntl.h>
#include <gmock/gmock.h>
#include <seccomp.h>
#include <sys/resource.h>

#include <csignal>
#include <thread>

#include "Images.h"
#include "worker/NewFile.h"

namespace {

/// What a file system can do.
struct FileSystem {
    const char* name;
    bool hasUnnamedFiles;
    bool keepsWhatIsThere;  // when asked to rename without replacing
};

constexpr FileSystem kFileSystems[] = {{"most", true, true}, {"some", false, true}, {"few", false, false}};

/// Runs it where the kernel answers as on such a file system.
template <class F>
void on(const FileSystem& system, F f) {
    std::thread([&] {
        const auto filter = seccomp_init(SCMP_ACT_ALLOW);
        if (!system.hasUnnamedFiles)
            seccomp_rule_add(filter, SCMP_ACT_ERRNO(EOPNOTSUPP), SCMP_SYS(openat), 1,
                             SCMP_A2(SCMP_CMP_MASKED_EQ, O_TMPFILE, O_TMPFILE));
        if (!system.keepsWhatIsThere)
            seccomp_rule_add(filter, SCMP_ACT_ERRNO(EINVAL), SCMP_SYS(renameat2), 1, SCMP_A4(SCMP_CMP_NE, 0, 0));
        EXPECT_EQ(seccomp_load(filter), 0);
        seccomp_release(filter);
        f();
    }).join();
}

class NewFileTest : public testing::TestWithParam<FileSystem> {
 protected:
    Folder folder;
};

TEST_P(NewFileTest, AppearsWhenItIsCompleteAndReplacesNothing) {
    save(folder / "taken", QByteArray("mine"));
    on(GetParam(), [&] {
        auto file = NewFile::in(folder.path);
        ASSERT_TRUE(file);
        const QByteArray contents(3 << 20, 'x');
        ASSERT_EQ(::write(file->descriptor(), contents.constData(), size_t(contents.size())), contents.size());
        EXPECT_EQ(folder.names(), QStringList{QStringLiteral("taken")});
        ASSERT_TRUE(file->finish());
        EXPECT_EQ(file->name("taken"), NewFile::Naming::taken);
        EXPECT_EQ(file->name("no/such/folder"), NewFile::Naming::failed);
        EXPECT_EQ(file->name("new"), NewFile::Naming::done);
        file.reset();
        EXPECT_EQ(load(folder / "new"), contents);
        EXPECT_EQ(load(folder / "taken"), "mine");
        EXPECT_EQ(folder.names(), (QStringList{QStringLiteral("new"), QStringLiteral("taken")}));
    });
}

TEST_P(NewFileTest, LeavesNothingWhenItIsGivenUp) {
    on(GetParam(), [&] {
        for (const bool isFinished : {false, true}) {
            auto file = NewFile::in(folder.path);
            ASSERT_TRUE(file);
            ASSERT_EQ(::write(file->descriptor(), "half", 4), 4);
            ASSERT_TRUE(!isFinished || file->finish());
            file.reset();
            EXPECT_EQ(folder.names(), QStringList());
        }
    });
}

INSTANTIATE_TEST_SUITE_P(FileSystems, NewFileTest, testing::ValuesIn(kFileSystems),
                         [](const auto& system) { return std::string(system.param.name); });

}  // namespace
