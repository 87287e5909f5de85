#include "worker/SystemCalls.h"

#include <fcntl.h>
#include <sched.h>
#include <seccomp.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>

namespace {

constexpr scmp_datum_t kLow = 0xffffffff;  // the kernel looks only at the lower half of an int argument

/// Calls that are harmless with any arguments, given the open descriptors.
constexpr int kAllowed[] = {
    // memory
    SCMP_SYS(brk), SCMP_SYS(mmap), SCMP_SYS(munmap), SCMP_SYS(mremap), SCMP_SYS(mprotect), SCMP_SYS(madvise),
    // files
    SCMP_SYS(read), SCMP_SYS(pread64), SCMP_SYS(readv), SCMP_SYS(preadv), SCMP_SYS(write), SCMP_SYS(pwrite64),
    SCMP_SYS(writev), SCMP_SYS(lseek), SCMP_SYS(close), SCMP_SYS(close_range), SCMP_SYS(dup), SCMP_SYS(fadvise64),
    SCMP_SYS(stat), SCMP_SYS(lstat), SCMP_SYS(fstat), SCMP_SYS(newfstatat), SCMP_SYS(statx), SCMP_SYS(statfs),
    SCMP_SYS(fstatfs), SCMP_SYS(access), SCMP_SYS(faccessat), SCMP_SYS(faccessat2), SCMP_SYS(readlink),
    SCMP_SYS(readlinkat), SCMP_SYS(getcwd), SCMP_SYS(getdents64), SCMP_SYS(poll), SCMP_SYS(ppoll),
    // threads
    SCMP_SYS(futex), SCMP_SYS(set_robust_list), SCMP_SYS(rseq), SCMP_SYS(sched_yield), SCMP_SYS(sched_getaffinity),
    SCMP_SYS(getcpu), SCMP_SYS(exit), SCMP_SYS(exit_group), SCMP_SYS(eventfd2),  // to wake one another
#ifdef __SANITIZE_ADDRESS__
    SCMP_SYS(pipe), SCMP_SYS(pipe2),  // its test for an object: can it be written into a pipe
#endif
    // signals to itself
    SCMP_SYS(rt_sigaction), SCMP_SYS(rt_sigprocmask), SCMP_SYS(rt_sigreturn), SCMP_SYS(sigaltstack),
    SCMP_SYS(restart_syscall),
    // time
    SCMP_SYS(clock_gettime), SCMP_SYS(clock_getres), SCMP_SYS(gettimeofday), SCMP_SYS(time), SCMP_SYS(nanosleep),
    SCMP_SYS(clock_nanosleep), SCMP_SYS(getrusage), SCMP_SYS(times),
    // who and where it is
    SCMP_SYS(getpid), SCMP_SYS(gettid), SCMP_SYS(getuid), SCMP_SYS(geteuid), SCMP_SYS(getgid), SCMP_SYS(getegid),
    SCMP_SYS(uname), SCMP_SYS(sysinfo), SCMP_SYS(getrandom), SCMP_SYS(getrlimit)};

/// fcntl() commands that neither lock, nor notify others, nor change the shared state of descriptors.
constexpr int kDescriptorCommands[] = {F_GETFD, F_SETFD, F_GETFL, F_DUPFD, F_DUPFD_CLOEXEC};

scmp_arg_cmp is(unsigned argument, scmp_datum_t value) {
    return {argument, SCMP_CMP_MASKED_EQ, kLow, value};
}
scmp_arg_cmp has(unsigned argument, scmp_datum_t mask, scmp_datum_t bits) {
    return {argument, SCMP_CMP_MASKED_EQ, mask, bits};
}

}  // namespace

bool allowOnlyDecoding() {
    const std::unique_ptr<void, decltype(&seccomp_release)> filter(seccomp_init(SCMP_ACT_ERRNO(ENOSYS)),
                                                                   &seccomp_release);
    if (!filter) return false;
    const auto allow = [&](int call, auto... when) {
        return seccomp_rule_add(filter.get(), SCMP_ACT_ALLOW, call, sizeof...(when), when...) == 0;
    };
    constexpr scmp_datum_t kChanging = O_ACCMODE | O_CREAT | O_TRUNC | (O_TMPFILE & ~O_DIRECTORY);
    constexpr scmp_datum_t kThread = CLONE_VM | CLONE_FS | CLONE_FILES | CLONE_SIGHAND | CLONE_THREAD | CLONE_SYSVSEM |
                                     CLONE_SETTLS | CLONE_PARENT_SETTID | CLONE_CHILD_CLEARTID;
    const bool isComplete =
        std::ranges::all_of(kAllowed, [&](int call) { return allow(call); }) &&
        std::ranges::all_of(kDescriptorCommands, [&](int command) { return allow(SCMP_SYS(fcntl), is(1, command)); }) &&
        allow(SCMP_SYS(open), has(1, kChanging, O_RDONLY)) && allow(SCMP_SYS(openat), has(2, kChanging, O_RDONLY)) &&
        // A filter cannot see the arguments of clone3(); when that fails with ENOSYS, the C library uses this one.
        allow(SCMP_SYS(clone), has(0, kLow, kThread)) && allow(SCMP_SYS(prctl), is(0, PR_SET_NAME)) &&
        // For abort().
        allow(SCMP_SYS(tgkill), is(0, scmp_datum_t(::getpid()))) &&
        // Reading its own limits.
        allow(SCMP_SYS(prlimit64), is(0, 0), has(2, ~scmp_datum_t(0), 0));
    return isComplete && seccomp_load(filter.get()) == 0;
}
