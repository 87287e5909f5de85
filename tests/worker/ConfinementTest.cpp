#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/landlock.h>
#include <netinet/in.h>
#include <pthread.h>
#include <seccomp.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <thread>

#include "Images.h"
#include "worker/Confinement.h"

namespace {

#ifdef GLIMMET_SANITIZED
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif

/// Runs it in a process of its own that is confined. Gives what f gives, which is less than 100, or what went wrong
/// before.
template <class F>
int confined(F f, uid_t user = ::getuid()) {
    const pid_t child = ::fork();
    if (child == 0) {
        if (::setresuid(user, user, user) != 0) ::_exit(100);
        if (!limitResources()) ::_exit(101);
        if (!restrictAccess({})) ::_exit(102);
        ::_exit(f());
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

TEST(Confinement, RefusesWhatIsNotDecoding) {
    const Folder folder;
    save(folder / "mine", QByteArray("mine"));
    const QByteArray mine = folder / "mine", made = folder / "new";
    const Descriptor source(::open(mine.constData(), O_RDONLY)),
        unnamed(::open(folder.path.constData(), O_TMPFILE | O_RDWR, 0666));
    ASSERT_EQ(::dup2(unnamed.get(), kResult), kResult);
    const bool hasLandlock = ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION) >= 1;
    const auto open = [](const QByteArray& path, int flags) { return long(::open(path.constData(), flags, 0666)); };
    char program[] = "/bin/true";
    char* const arguments[] = {program, nullptr};
    rlimit more{RLIM_INFINITY, RLIM_INFINITY};
    const struct {
        const char* what;
        std::function<long()> attempt;
        bool needsLandlock = false;
    } attempts[] = {
        {"network", [] { return ::socket(AF_INET, SOCK_STREAM, 0); }},
        {"programs", [&] { return ::execv(program, arguments); }},
        {"processes", [] { return ::fork(); }},
        {"signals", [] { return ::kill(::getppid(), 0); }},
        {"an owner for signals", [] { return ::fcntl(kResult, F_SETOWN, ::getppid()); }},
        {"signals when it can be read", [] { return ::fcntl(STDOUT_FILENO, F_SETFL, O_ASYNC); }},
        {"other limits", [&] { return ::setrlimit(RLIMIT_FSIZE, &more); }},
        {"living on", [] { return ::prctl(PR_SET_PDEATHSIG, 0); }},
        {"typing", [] { return ::ioctl(STDIN_FILENO, TIOCSTI, "x"); }},
        {"a link of the result",
         [&] { return ::linkat(AT_FDCWD, "/proc/self/fd/3", AT_FDCWD, made.constData(), AT_SYMLINK_FOLLOW); }},
        {"removing", [&] { return ::unlink(mine.constData()); }},
        {"writing", [&] { return open(mine, O_WRONLY); }},
        {"emptying", [&] { return open(mine, O_RDONLY | O_TRUNC); }},
        {"making", [&] { return open(made, O_RDONLY | O_CREAT); }},
        {"making without a name", [&] { return open(folder.path, O_RDWR | O_TMPFILE); }},
        {"the source anew", [&] { return open("/proc/self/fd/0", O_RDWR); }},
        {"reading files", [&] { return open(mine, O_RDONLY); }, true},
        {"reading folders", [&] { return open(folder.path, O_RDONLY | O_DIRECTORY); }, true},
        {"reading about processes", [&] { return open("/proc/self/environ", O_RDONLY); }, true},
    };
    for (const auto& [what, attempt, needsLandlock] : attempts) {
        if (needsLandlock && !hasLandlock) continue;
        const int refused =
            confined([&] { return attempt() < 0 && (errno == EPERM || errno == EACCES || errno == ENOSYS) ? 1 : 0; });
        EXPECT_EQ(refused, 1) << what;
    }
    ::close(kResult);
    EXPECT_EQ(folder.names(), QStringList{QStringLiteral("mine")});
    EXPECT_EQ(load(folder / "mine"), "mine");
}

TEST(Confinement, DoesWithoutLandlockButNotWithABrokenOne) {
    for (const auto& [call, error, outcome] : {std::tuple(SYS_landlock_create_ruleset, ENOSYS, 0),
                                               {SYS_landlock_create_ruleset, EMFILE, 102},
                                               {SYS_landlock_restrict_self, E2BIG, 102}}) {
        std::thread([&] {
            const auto filter = seccomp_init(SCMP_ACT_ALLOW);
            seccomp_rule_add(filter, SCMP_ACT_ERRNO(uint16_t(error)), int(call), 0);
            EXPECT_EQ(seccomp_load(filter), 0);
            seccomp_release(filter);
            EXPECT_EQ(confined([] { return ::open("/dev/null", O_WRONLY) < 0 ? 0 : 1; }), outcome) << call << error;
        }).join();
    }
}

TEST(Confinement, HasLimits) {
    const auto isWithin = [](auto resource, rlim_t most) {
        rlimit limit{};
        return ::getrlimit(resource, &limit) == 0 && limit.rlim_max <= most;
    };
    const auto areSet = [&] {
        return isWithin(RLIMIT_CORE, 1) && isWithin(RLIMIT_CPU, 65) && isWithin(RLIMIT_FSIZE, 512U << 20) &&
               isWithin(RLIMIT_NOFILE, 64) && (kIsSanitized || isWithin(RLIMIT_AS, 2048U << 20));
    };
    EXPECT_EQ(confined(areSet), 1);
    // The number of threads is not limited for root.
    constexpr uid_t kNobody = 65534;
    constexpr int kTooMany = 4000;
    const auto threads = [] {
        const auto wait = [](void*) -> void* { return ::sleep(60), nullptr; };
        pthread_attr_t small;
        ::pthread_attr_init(&small);
        ::pthread_attr_setstacksize(&small, 16384);
        pthread_t thread;
        int count = 0;
        while (count < kTooMany && ::pthread_create(&thread, &small, wait, nullptr) == 0) ++count;
        return count >= 8 && count < kTooMany;
    };
    EXPECT_EQ(confined(threads, ::getuid() == 0 ? kNobody : ::getuid()), 1);
}

}  // namespace
