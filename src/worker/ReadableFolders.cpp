#include "worker/ReadableFolders.h"

#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>

#include "platform/Descriptor.h"

namespace {

/// Libraries, and the modules that they load.
constexpr const char* kLibraries[] = {"/lib", "/lib64", "/usr/lib", "/usr/lib64", "/usr/local/lib", "/etc/ld.so.cache"};

/// All access rights that this version supports. Those after the first thirteen are newer than our headers.
uint64_t rightsIn(long version) {
    constexpr uint64_t kFirst = (LANDLOCK_ACCESS_FS_MAKE_SYM << 1) - 1;
    constexpr uint64_t kRefer = 1 << 13, kTruncate = 1 << 14, kControlDevices = 1 << 15;
    return kFirst | (version >= 2 ? kRefer : 0) | (version >= 3 ? kTruncate : 0) | (version >= 5 ? kControlDevices : 0);
}

/// Ignores paths that do not exist.
bool allowReading(const Descriptor& ruleset, const char* path) {
    const Descriptor place(::open(path, O_PATH | O_CLOEXEC));
    struct stat status = {};
    if (!place || ::fstat(place.get(), &status) != 0) return true;
    const uint64_t folders = S_ISDIR(status.st_mode) ? LANDLOCK_ACCESS_FS_READ_DIR : 0;
    const landlock_path_beneath_attr rule{LANDLOCK_ACCESS_FS_READ_FILE | folders, place.get()};
    return ::syscall(SYS_landlock_add_rule, ruleset.get(), LANDLOCK_RULE_PATH_BENEATH, &rule, 0) == 0;
}

}  // namespace

bool allowReadingOnly(std::span<const char* const> places) {
    const long version = ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (version < 1) return errno == ENOSYS || errno == EOPNOTSUPP;
    landlock_ruleset_attr handled{};
    handled.handled_access_fs = rightsIn(version);
    const Descriptor ruleset(int(::syscall(SYS_landlock_create_ruleset, &handled, sizeof handled, 0)));
    if (!ruleset) return false;
    const auto allow = [&](const char* path) { return allowReading(ruleset, path); };
    if (!std::ranges::all_of(kLibraries, allow) || !std::ranges::all_of(places, allow)) return false;
    return ::syscall(SYS_landlock_restrict_self, ruleset.get(), 0) == 0;
}
