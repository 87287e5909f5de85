#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <seccomp.h>

#include <cerrno>
#include <thread>

/// What a file system can do.
struct FileSystem {
    const char* name;
    bool hasUnnamedFiles;
    bool keepsWhatIsThere;  // when asked to rename without replacing
};

inline constexpr FileSystem kFileSystems[] = {{"most", true, true}, {"some", false, true}, {"few", false, false}};

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
