// The stack of input sources beneath the record reader: command files, the replayed log and the
// loop file over the console.
#pragma once

#include <string>
#include <string_view>

namespace quelor {

inline constexpr int input_levels = 30;

/// Pushes a file; returns the new depth, 0 on failure.
int open_input_file(std::string_view name, bool echo);
int input_depth();
bool input_is_console();
bool input_echo();
/// One line of the current source without its end. A file that has ended gives "return"; the
/// console at end of input ends the program through the final exit.
struct InputLine {
    std::string text;
    bool from_console = false;
};
InputLine read_input_line(std::string_view prompt, bool prompt_written);
/// Raw line for the project name and RETURN waits: from the current file or the console, unlogged;
/// false at end of input.
bool read_raw_line(std::string& line);
void pop_input();
void close_inputs_from(int level);
bool rewind_input();
void close_all_inputs();

} // namespace quelor
