#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/landlock.h>
#include <netinet/in.h>
#include <sched.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/resource.h>
#include <sys/sem.h>
#include <sys/shm.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <thread>

#include "FileSystems.h"
#include "Images.h"
#include "worker/Confinement.h"

namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif

bool isRefused(long result) {
    return result < 0 && (errno == EPERM || errno == EACCES);
}

/// Runs it in a process of its own, which tells by its exit code which line was wrong.
#define CHECK_HERE(condition) \
    if (!(condition)) ::_exit(__LINE__ % 256)

template <class F>
int exitCode(F f) {
    const pid_t child = ::fork();
    if (child == 0) {
        f();
        ::_exit(0);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

TEST(Confinement, ReachesNobody) {
    const Folder folder;
    save(folder / "mine", QByteArray("mine"));
    EXPECT_EQ(exitCode([&] {
                  CHECK_HERE(restrictAccess(nullptr));
                  CHECK_HERE(isRefused(::socket(AF_INET, SOCK_STREAM, 0)));
                  CHECK_HERE(isRefused(::socket(AF_UNIX, SOCK_STREAM, 0)));
                  char name[] = "/bin/true";
                  char* const argv[] = {name, nullptr};
                  CHECK_HERE(isRefused(::execv(name, argv)));
                  CHECK_HERE(isRefused(::fork()));
                  std::thread([] {}).join();
                  CHECK_HERE(isRefused(::kill(::getppid(), 0)));
                  CHECK_HERE(::kill(::getpid(), 0) == 0);
                  CHECK_HERE(isRefused(::syscall(SYS_io_uring_setup, 1, nullptr)));
                  CHECK_HERE(isRefused(::open((folder / "mine").constData(), O_RDONLY | O_TRUNC)));
                  CHECK_HERE(isRefused(::open((folder / "mine").constData(), O_ACCMODE | O_TRUNC)));
                  CHECK_HERE(isRefused(::chmod((folder / "mine").constData(), 0)));
                  constexpr long kFchmodat2 = 452;
                  CHECK_HERE(isRefused(::syscall(kFchmodat2, AT_FDCWD, (folder / "mine").constData(), 0, 0)));
                  CHECK_HERE(isRefused(::shmget(IPC_PRIVATE, 4096, IPC_CREAT | 0600)));
                  CHECK_HERE(isRefused(::shmctl(0, IPC_STAT, nullptr)));
                  CHECK_HERE(isRefused(::semget(IPC_PRIVATE, 1, IPC_CREAT | 0600)));
                  CHECK_HERE(isRefused(::msgget(IPC_PRIVATE, IPC_CREAT | 0600)));
                  CHECK_HERE(isRefused(::setpriority(PRIO_PROCESS, id_t(::getppid()), 10)));
                  cpu_set_t processors;
                  CHECK_HERE(::sched_getaffinity(0, sizeof processors, &processors) == 0);
                  CHECK_HERE(isRefused(::sched_setaffinity(::getppid(), sizeof processors, &processors)));
                  const sched_param none{};
                  CHECK_HERE(isRefused(::sched_setscheduler(::getppid(), SCHED_OTHER, &none)));
                  CHECK_HERE(isRefused(::ioctl(STDIN_FILENO, TIOCSTI, "x")));
              }),
              0);
    EXPECT_EQ(load(folder / "mine"), "mine");
}

TEST(Confinement, WritesOnlyWhereTheResultGoes) {
    if (::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION) < 1)
        GTEST_SKIP() << "this kernel has no Landlock";
    const auto opens = [](const QByteArray& path, int flags) { return ::open(path.constData(), flags, 0666); };
    for (const FileSystem& system : kFileSystems) {
        SCOPED_TRACE(system.name);
        const Folder folder, other;
        for (const QByteArray& mine : {folder / "mine", other / "mine"}) save(mine, QByteArray("mine"));
        EXPECT_EQ(exitCode([&] {
                      on(system, [&] {
                          auto file = NewFile::in(folder.path);
                          CHECK_HERE(file && restrictAccess(&*file));
                          for (const Folder* any : {&folder, &other}) {
                              CHECK_HERE(opens(*any / "mine", O_RDONLY) >= 0);
                              CHECK_HERE(isRefused(opens(*any / "mine", O_WRONLY)));
                              CHECK_HERE(isRefused(opens(*any / "mine", O_RDWR | O_TRUNC)));
                              CHECK_HERE(isRefused(::truncate((*any / "mine").constData(), 0)));
                              CHECK_HERE(isRefused(::symlink("mine", (*any / "link").constData())));
                              // Where naming the result removes a name, Landlock cannot tell which.
                              if (any == &folder && file->isHidden()) continue;
                              CHECK_HERE(isRefused(::unlink((*any / "mine").constData())));
                              CHECK_HERE(isRefused(::rename((*any / "mine").constData(), (*any / "x").constData())));
                          }
                          CHECK_HERE(isRefused(opens(other / "new", O_CREAT | O_RDONLY)));
                          CHECK_HERE(isRefused(opens(other.path, O_TMPFILE | O_RDWR)) || errno == EOPNOTSUPP);
                          CHECK_HERE(opens("/dev/null", O_WRONLY) >= 0);
                          CHECK_HERE(::write(file->descriptor(), "new", 3) == 3 && file->finish());
                          CHECK_HERE(file->name("mine") == NewFile::Naming::taken);
                          CHECK_HERE(file->name("new") == NewFile::Naming::done);
                      });
                  }),
                  0);
        EXPECT_EQ(load(folder / "new"), "new");
        EXPECT_EQ(load(folder / "mine") + load(other / "mine"), "minemine");
        EXPECT_TRUE(folder.isSoon({QStringLiteral("mine"), QStringLiteral("new")}));
    }
    const Folder folder;
    EXPECT_EQ(exitCode([&] {
                  CHECK_HERE(restrictAccess(nullptr));
                  CHECK_HERE(isRefused(opens(folder / "new", O_CREAT | O_RDONLY)));
              }),
              0);
}

TEST(Confinement, HasLimits) {
    EXPECT_EQ(exitCode([] {
                  CHECK_HERE(limitResources());
                  const auto limitOf = [](auto resource) {
                      rlimit limit{};
                      ::getrlimit(resource, &limit);
                      return limit.rlim_max;
                  };
                  CHECK_HERE(limitOf(RLIMIT_CORE) <= 1);
                  CHECK_HERE(limitOf(RLIMIT_CPU) <= 65);
                  CHECK_HERE(limitOf(RLIMIT_FSIZE) <= 512U << 20);
                  CHECK_HERE(::alarm(0) > 50);
                  CHECK_HERE(kIsSanitized || limitOf(RLIMIT_AS) <= 2048U << 20);
              }),
              0);
}

}  // namespace
