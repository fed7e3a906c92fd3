// Memory that the program may still take without being ended for it. The system grants pages before
// it has them and ends a process that then uses them, so what is large is asked for here first.
#pragma once

#include <cstdint>
#include <string>

namespace quelor {

/// Blocks from this size on are held against the memory available; smaller ones are not worth it.
inline constexpr std::uint64_t checked_memory_from = 1u << 24;

/// Bytes that can still be taken: the least of what the system has free or can free, of what the
/// control groups of the process leave, and of its limit of addresses. Pages of arrays that were
/// made and not yet used count as taken.
std::uint64_t available_memory();

/// What the system and the control groups leave, as the files of /proc and /sys below `root` tell.
std::uint64_t memory_left_by_system(const std::string& root = "");

} // namespace quelor
