// The command lines of earlier sessions: a text file of one line each in the user's state folder.
// Where that cannot be read or written there is no history, and nothing is said about it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quelor {

/// "$XDG_STATE_HOME/quelor-zt/history", or under "~/.local/state"; empty when there is no such
/// place.
std::string history_file();
/// The last `limit` lines, oldest first. A file that has grown to twice as many is cut to them.
std::vector<std::string> read_history(const std::string& file, std::size_t limit);
/// Adds a line at once, so that it outlives whatever becomes of the session. Makes the folder.
void append_history(const std::string& file, std::string_view line);

} // namespace quelor
