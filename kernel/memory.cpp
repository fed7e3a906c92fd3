// Memory left to the program, and the refusal of scratch memory that is not there.
#include "kernel/memory.hpp"

#include "kernel/dbfgen.hpp"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <new>
#include <optional>
#include <sys/resource.h>

namespace quelor {

namespace {

constexpr std::uint64_t no_limit = std::numeric_limits<std::uint64_t>::max();

std::uint64_t difference(std::uint64_t a, std::uint64_t b) {
    return a - std::min(a, b);
}

/// The number behind the word `key` of a file, or the first one for an empty key; none when there
/// is no such file or number ("max" is none).
std::optional<std::uint64_t> number_in(const std::string& path, std::string_view key) {
    std::ifstream file(path);
    std::string word;
    while (!key.empty() && file >> word && word != key) {
    }
    std::uint64_t value = 0;
    if (file >> value) return value;
    return {};
}

/// A line "key:   1234 kB" of /proc, in bytes.
std::uint64_t proc_bytes(const std::string& path, std::string_view key) {
    return 1024 * number_in(path, key).value_or(0);
}

// --- control groups

/// Names of the files of one version of the control groups; `caches` are pages that are given back
/// when the group comes to its limit.
struct GroupFiles {
    std::string_view mount, limit, usage, caches[2];
};
constexpr GroupFiles version1{"/sys/fs/cgroup/memory",
                              "/memory.limit_in_bytes",
                              "/memory.usage_in_bytes",
                              {"total_inactive_file", "total_active_file"}};
constexpr GroupFiles version2{
    "/sys/fs/cgroup", "/memory.max", "/memory.current", {"inactive_file", "active_file"}};

std::uint64_t group_leaves(const std::string& folder, const GroupFiles& files) {
    const auto limit = number_in(folder + std::string(files.limit), {});
    const auto usage = number_in(folder + std::string(files.usage), {});
    if (!limit || !usage) return no_limit;
    std::uint64_t used = *usage;
    for (const auto cache : files.caches)
        used = difference(used, number_in(folder + "/memory.stat", cache).value_or(0));
    return difference(*limit, used);
}

/// The least that the group and those above it leave. The path may be one of the machine outside of
/// a container, of which only the uppermost folder is seen here.
std::uint64_t groups_leave(const std::string& root, std::string path, const GroupFiles& files) {
    const std::string mount = root + std::string(files.mount);
    std::uint64_t left = group_leaves(mount, files);
    for (; path.size() > 1; path.resize(path.rfind('/')))
        left = std::min(left, group_leaves(mount + path, files));
    return left;
}

/// Lines of /proc/self/cgroup: "0::/path" in version 2, "4:memory:/path" in version 1.
std::uint64_t left_by_groups(const std::string& root) {
    std::ifstream groups(root + "/proc/self/cgroup");
    std::uint64_t left = no_limit;
    for (std::string line; std::getline(groups, line);) {
        const auto first = line.find(':'), second = line.find(':', first + 1);
        if (second == std::string::npos) continue;
        const std::string controllers = "," + line.substr(first + 1, second - first - 1) + ",";
        const std::string path = line.substr(second + 1);
        if (controllers == ",,") left = std::min(left, groups_leave(root, path, version2));
        if (controllers.find(",memory,") != std::string::npos)
            left = std::min(left, groups_leave(root, path, version1));
    }
    return left;
}

// --- the process

/// Pages of arrays that have been promised and not yet been used.
std::uint64_t promised() {
    const std::string status = "/proc/self/status";
    return difference(db_memory(), proc_bytes(status, "RssAnon:") + proc_bytes(status, "VmSwap:"));
}

std::uint64_t addresses_left() {
    rlimit limit{};
    if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return no_limit;
    return difference(limit.rlim_cur, proc_bytes("/proc/self/status", "VmSize:"));
}

/// Memory for `operator new`; null when it is not there.
void* scratch(std::size_t bytes) {
    if (bytes >= checked_memory_from && bytes > available_memory()) return nullptr;
    return std::malloc(std::max<std::size_t>(bytes, 1));
}

} // namespace

std::uint64_t memory_left_by_system(const std::string& root) {
    const std::string memory = root + "/proc/meminfo";
    const auto system = number_in(memory, "MemAvailable:");
    const std::uint64_t left = system ? 1024 * *system + proc_bytes(memory, "SwapFree:") : no_limit;
    return std::min(left, left_by_groups(root));
}

std::uint64_t available_memory() {
    return std::min(difference(memory_left_by_system(), promised()), addresses_left());
}

} // namespace quelor

// Scratch memory of all commands. One that asks for more than there is gets std::bad_alloc, which
// the main loop catches; without this the system would grant the pages and end the program later.

void* operator new(std::size_t bytes) {
    if (void* const block = quelor::scratch(bytes)) return block;
    throw std::bad_alloc();
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return quelor::scratch(bytes);
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
