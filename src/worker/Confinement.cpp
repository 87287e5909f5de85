#include "worker/Confinement.h"

#include <fcntl.h>
#include <linux/landlock.h>
#include <malloc.h>
#include <poll.h>
#include <sched.h>
#include <seccomp.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <memory>

#include "worker/Descriptor.h"

namespace {

constexpr unsigned kSeconds = 60;
constexpr rlim_t kMiB = 1 << 20;
constexpr int kNiceness = 5;

/// A stricter limit that is there already stays.
bool limit(__rlimit_resource resource, rlim_t soft, rlim_t hard) {
    rlimit value{};
    if (::getrlimit(resource, &value) != 0) return false;
    value.rlim_max = std::min(value.rlim_max, hard);
    value.rlim_cur = std::min({value.rlim_cur, value.rlim_max, soft});
    return ::setrlimit(resource, &value) == 0;
}

/// With the answer goes the reason to work: whoever was to read it has ended if nobody can.
bool hasReader() {
    pollfd answer{STDOUT_FILENO, 0, 0};
    return ::poll(&answer, 1, 0) >= 0 && !(answer.revents & POLLERR);
}

bool limitMemory() {
#ifdef __SANITIZE_ADDRESS__
    return true;  // which needs terabytes of addresses
#else
    // Each of malloc's arenas takes 64 MiB of addresses, and by default every thread gets its own.
    ::mallopt(M_ARENA_MAX, 2);
    return limit(RLIMIT_AS, 2048 * kMiB, 2048 * kMiB);
#endif
}

using Filter = std::unique_ptr<void, decltype(&seccomp_release)>;

// Calls that are newer than the headers, but not than every kernel; their numbers are the same on all processors.
constexpr int kFchmodat2 = 452;
constexpr int kSetxattrat = 463;
constexpr int kRemovexattrat = 466;
constexpr int kFileSetattr = 469;

/// What no decoder needs. Landlock does not know of modes, owners and attributes, so changing these is refused here.
constexpr int kRefused[] = {
    // the network, and a way around this list
    SCMP_SYS(socket), SCMP_SYS(socketpair), SCMP_SYS(connect), SCMP_SYS(bind), SCMP_SYS(listen), SCMP_SYS(accept),
    SCMP_SYS(accept4), SCMP_SYS(sendto), SCMP_SYS(sendmsg), SCMP_SYS(sendmmsg), SCMP_SYS(io_uring_setup),
    // other programs
    SCMP_SYS(execve), SCMP_SYS(execveat), SCMP_SYS(ptrace), SCMP_SYS(process_vm_readv), SCMP_SYS(process_vm_writev),
    SCMP_SYS(pidfd_getfd), SCMP_SYS(pidfd_send_signal), SCMP_SYS(rt_sigqueueinfo), SCMP_SYS(rt_tgsigqueueinfo),
    SCMP_SYS(tkill), SCMP_SYS(fork), SCMP_SYS(vfork), SCMP_SYS(process_madvise), SCMP_SYS(process_mrelease),
    SCMP_SYS(kcmp), SCMP_SYS(migrate_pages), SCMP_SYS(move_pages),
    // what they share or say to each other
    SCMP_SYS(shmget), SCMP_SYS(shmat), SCMP_SYS(shmctl), SCMP_SYS(msgget), SCMP_SYS(msgsnd), SCMP_SYS(msgrcv),
    SCMP_SYS(msgctl), SCMP_SYS(semget), SCMP_SYS(semop), SCMP_SYS(semtimedop), SCMP_SYS(semctl), SCMP_SYS(mq_open),
    SCMP_SYS(mq_unlink),
    // how much of the processors they get
    SCMP_SYS(setpriority), SCMP_SYS(ioprio_set), SCMP_SYS(sched_setaffinity), SCMP_SYS(sched_setscheduler),
    SCMP_SYS(sched_setparam), SCMP_SYS(sched_setattr),
    // the rest of the system
    SCMP_SYS(unshare), SCMP_SYS(setns), SCMP_SYS(mount), SCMP_SYS(bpf), SCMP_SYS(perf_event_open),
    SCMP_SYS(userfaultfd), SCMP_SYS(keyctl), SCMP_SYS(add_key), SCMP_SYS(request_key),
    // what existing files are like
    SCMP_SYS(chmod), SCMP_SYS(fchmod), SCMP_SYS(fchmodat), SCMP_SYS(chown), SCMP_SYS(fchown), SCMP_SYS(lchown),
    SCMP_SYS(fchownat), SCMP_SYS(setxattr), SCMP_SYS(lsetxattr), SCMP_SYS(fsetxattr), SCMP_SYS(removexattr),
    SCMP_SYS(lremovexattr), SCMP_SYS(fremovexattr), SCMP_SYS(utime), SCMP_SYS(utimes), SCMP_SYS(futimesat),
    SCMP_SYS(utimensat), SCMP_SYS(truncate), SCMP_SYS(openat2), kFchmodat2, kSetxattrat, kRemovexattrat, kFileSetattr};

scmp_arg_cmp differs(unsigned argument, scmp_datum_t from) {
    return {argument, SCMP_CMP_NE, from, 0};
}
scmp_arg_cmp has(unsigned argument, scmp_datum_t mask, scmp_datum_t bits) {
    return {argument, SCMP_CMP_MASKED_EQ, mask, bits};
}

bool refuseSystemCalls() {
    const Filter filter(seccomp_init(SCMP_ACT_ALLOW), &seccomp_release);
    if (!filter) return false;
    const auto refuse = [&](int call, auto... when) {
        return seccomp_rule_add(filter.get(), SCMP_ACT_ERRNO(EPERM), call, sizeof...(when), when...) == 0;
    };
    constexpr scmp_datum_t kLow = 0xffffffff;  // the kernel looks at no more of it
    constexpr scmp_datum_t kOpening = O_ACCMODE | O_TRUNC;
    const bool isComplete =
        std::ranges::all_of(kRefused, [&](int call) { return refuse(call); }) &&
        // A thread that fails ends its own process.
        refuse(SCMP_SYS(kill), differs(0, scmp_datum_t(::getpid()))) &&
        refuse(SCMP_SYS(tgkill), differs(0, scmp_datum_t(::getpid()))) && refuse(SCMP_SYS(prlimit64), differs(0, 0)) &&
        // Typing into the terminal that Glimmet was started from.
        refuse(SCMP_SYS(ioctl), has(1, kLow, TIOCSTI)) && refuse(SCMP_SYS(ioctl), has(1, kLow, TIOCLINUX)) &&
        // Opening without writing can still empty a file.
        refuse(SCMP_SYS(open), has(1, kOpening, O_RDONLY | O_TRUNC)) &&
        refuse(SCMP_SYS(open), has(1, kOpening, kOpening)) &&
        refuse(SCMP_SYS(openat), has(2, kOpening, O_RDONLY | O_TRUNC)) &&
        refuse(SCMP_SYS(openat), has(2, kOpening, kOpening)) &&
        // Threads only. The newer call's arguments cannot be seen; told that there is none, glibc takes the older one.
        refuse(SCMP_SYS(clone), has(0, CLONE_THREAD, 0)) &&
        seccomp_rule_add(filter.get(), SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3), 0) == 0;
    return isComplete && seccomp_load(filter.get()) == 0;
}

void allow(const Descriptor& ruleset, int file, quint64 access) {
    const landlock_path_beneath_attr rule{access, file};
    ::syscall(SYS_landlock_add_rule, ruleset.get(), LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
}

/// Being in a domain of its own also keeps it from what /proc tells about the memory, environment and files of other
/// processes, even of the same user.
void refuseWriting(const NewFile* except) {
    const long version = ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (version < 1) return;
    landlock_ruleset_attr handled{};
    handled.handled_access_fs = LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_DIR |
                                LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_MAKE_CHAR |
                                LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_MAKE_REG |
                                LANDLOCK_ACCESS_FS_MAKE_SOCK | LANDLOCK_ACCESS_FS_MAKE_FIFO |
                                LANDLOCK_ACCESS_FS_MAKE_BLOCK | LANDLOCK_ACCESS_FS_MAKE_SYM;
    const Descriptor ruleset(int(::syscall(SYS_landlock_create_ruleset, &handled, sizeof handled, 0)));
    if (!ruleset) return;
    if (const Descriptor nowhere(::open("/dev/null", O_PATH | O_CLOEXEC)); nowhere)
        allow(ruleset, nowhere.get(), LANDLOCK_ACCESS_FS_WRITE_FILE);
    if (except)
        allow(ruleset, except->folderDescriptor(),
              LANDLOCK_ACCESS_FS_MAKE_REG | (except->isHidden() ? LANDLOCK_ACCESS_FS_REMOVE_FILE : 0));
    ::syscall(SYS_landlock_restrict_self, ruleset.get(), 0);
}

}  // namespace

bool limitResources() {
    ::close_range(STDERR_FILENO + 1, ~0U, 0);
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    std::signal(SIGALRM, SIG_DFL);
    std::signal(SIGXCPU, SIG_DFL);
    std::signal(SIGXFSZ, SIG_IGN);  // the write fails instead
    ::alarm(kSeconds);
    ::setpriority(PRIO_PROCESS, 0, kNiceness);
    // To a program that collects cores, as many systems have one, a limit of 0 means nothing and 1 means no.
    return ::prctl(PR_SET_PDEATHSIG, SIGKILL) == 0 && hasReader() && limit(RLIMIT_CORE, 1, 1) &&
           limit(RLIMIT_CPU, kSeconds, kSeconds + 5) && limit(RLIMIT_FSIZE, 512 * kMiB, 512 * kMiB) && limitMemory();
}

bool restrictAccess(const NewFile* result) {
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) return false;
    refuseWriting(result);
    return refuseSystemCalls();
}
