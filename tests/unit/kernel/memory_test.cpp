#include "kernel/memory.hpp"

#include "../support/session.hpp"

#include <limits>
#include <new>

namespace quelor {
namespace {

constexpr std::uint64_t mb = 1024 * 1024;

/// Files of /proc and /sys in the test's folder.
struct Memory : Session {
    static void put(const std::string& name, const std::string& text) {
        std::filesystem::create_directories(std::filesystem::path(name).parent_path());
        std::ofstream(name) << text;
    }
    static std::uint64_t left() { return memory_left_by_system(".") / mb; }
    static void put_machine() {
        put("proc/meminfo", "MemTotal: 9000000 kB\nMemFree: 1 kB\nMemAvailable: 2048000 kB\n"
                            "SwapTotal: 999999 kB\nSwapFree: 102400 kB\n");
    }
    static void put_group(const std::string& folder, const std::string& limit,
                          std::uint64_t used_mb, std::uint64_t cache_mb) {
        put(folder + "/memory.max", limit + "\n");
        put(folder + "/memory.current", std::to_string(used_mb * mb) + "\n");
        put(folder + "/memory.stat", "anon 77\nfile 99999999\nactive_file " +
                                         std::to_string(cache_mb * mb) + "\ninactive_file 0\n");
    }
};

TEST_F(Memory, IsWhatTheSystemHasAvailableAndItsFreeSwap) {
    put_machine();
    EXPECT_EQ(left(), 2100U);
}

TEST_F(Memory, IsLimitedByTheTightestControlGroupOfVersion2LessItsUsage) {
    put_machine();
    put("proc/self/cgroup", "0::/user/job\n");
    put_group("sys/fs/cgroup/user", std::to_string(1000 * mb), 700, 100);
    put_group("sys/fs/cgroup/user/job", "max", 10, 0);
    EXPECT_EQ(left(), 400U) << "its cache is given back";
    put_group("sys/fs/cgroup/user/job", std::to_string(300 * mb), 500, 0);
    EXPECT_EQ(left(), 0U) << "over its limit";
}

TEST_F(Memory, IsLimitedByTheControlGroupOfVersion1SeenFromInsideAContainer) {
    put_machine();
    put("proc/self/cgroup", "5:cpu,cpuacct:/x\n4:hugetlb,memory:/docker/abc\n0::/\n");
    put("sys/fs/cgroup/memory/memory.limit_in_bytes", std::to_string(800 * mb));
    put("sys/fs/cgroup/memory/memory.usage_in_bytes", std::to_string(500 * mb));
    put("sys/fs/cgroup/memory/memory.stat",
        "inactive_file 5\ntotal_inactive_file " + std::to_string(50 * mb) + "\n");
    EXPECT_EQ(left(), 350U);
}

TEST_F(Memory, IsUnlimitedWhereNothingTells) {
    EXPECT_EQ(memory_left_by_system("."), std::numeric_limits<std::uint64_t>::max());
}

TEST_F(Memory, CountsAnArrayBeforeItsPagesAreUsed) {
    constexpr std::uint64_t size = 2000 * mb;
    const std::uint64_t before = available_memory();
    if (before < 2 * size) GTEST_SKIP() << "not enough memory for the test";
    create_array(type_void, "a", {static_cast<std::int32_t>(size)});
    // Other programs take and free memory meanwhile.
    EXPECT_NEAR(static_cast<double>(before - available_memory()), double{size}, 0.5 * double{size});
}

TEST_F(Memory, RefusesScratchThatTheSystemWouldGrantAndNotHave) {
    const std::size_t more = available_memory() + 64 * mb;
    EXPECT_EQ(operator new(more, std::nothrow), nullptr);
    EXPECT_THROW(static_cast<void>(operator new(more)), std::bad_alloc);
}

} // namespace
} // namespace quelor
