#include "worker/Confinement.h"

#include <malloc.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/sysinfo.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>

#include "worker/ReadableFolders.h"
#include "worker/SystemCalls.h"

namespace {

constexpr unsigned kSeconds = 60;
constexpr rlim_t kMiB = 1 << 20;
constexpr int kNiceness = 5;
constexpr rlim_t kOpenFiles = 64;

/// Keeps an existing limit if it is stricter.
bool limit(__rlimit_resource resource, rlim_t soft, rlim_t hard) {
    rlimit value{};
    if (::getrlimit(resource, &value) != 0) return false;
    value.rlim_max = std::min(value.rlim_max, hard);
    value.rlim_cur = std::min({value.rlim_cur, value.rlim_max, soft});
    return ::setrlimit(resource, &value) == 0;
}

/// Whether someone can still read the answer: if not, our parent has exited and there is no point in working.
bool hasReader() {
    pollfd answer{STDOUT_FILENO, 0, 0};
    return ::poll(&answer, 1, 0) >= 0 && !(answer.revents & POLLERR);
}

bool limitMemory() {
#ifdef __SANITIZE_ADDRESS__
    return true;  // AddressSanitizer reserves terabytes of address space
#else
    // Each malloc arena takes 64 MiB of address space, and by default every thread gets its own.
    ::mallopt(M_ARENA_MAX, 2);
    return limit(RLIMIT_AS, 2048 * kMiB, 2048 * kMiB);
#endif
}

/// The limit counts all threads of the user, so it is set above the number of threads in the system: that leaves room
/// for ours and for those that the user starts meanwhile. It does not apply to root.
bool limitThreads() {
    constexpr rlim_t kMore = 256;
    struct sysinfo system = {};
    return ::sysinfo(&system) == 0 && limit(RLIMIT_NPROC, system.procs + kMore, system.procs + kMore);
}

}  // namespace

bool limitResources() {
    ::close_range(kResult + 1, ~0U, 0);
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    std::signal(SIGALRM, SIG_DFL);
    std::signal(SIGXCPU, SIG_DFL);
    std::signal(SIGXFSZ, SIG_IGN);  // the write fails instead
    ::alarm(kSeconds);
    ::setpriority(PRIO_PROCESS, 0, kNiceness);
    // If cores are piped to a collector, as on many systems, a limit of 0 has no effect, but 1 disables them.
    return ::prctl(PR_SET_PDEATHSIG, SIGKILL) == 0 && hasReader() && limit(RLIMIT_CORE, 1, 1) &&
           limit(RLIMIT_CPU, kSeconds, kSeconds + 5) && limit(RLIMIT_FSIZE, 512 * kMiB, 512 * kMiB) &&
           limit(RLIMIT_NOFILE, kOpenFiles, kOpenFiles) && limitThreads() && limitMemory();
}

bool restrictAccess(std::span<const char* const> readable) {
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && allowReadingOnly(readable) && allowOnlyDecoding();
}
