// The stack of input sources beneath the record reader: command files, the replayed log and the
// text of a loop over the console.
#pragma once

#include "kernel/terminal.hpp"

#include <string>
#include <string_view>

namespace quelor {

inline constexpr int input_levels = 30;

/// Pushes a file; returns the new depth, 0 on failure (a message only when the stack is full).
int open_input_file(std::string_view name, bool echo);
int input_depth();
bool input_is_console();
/// Whether records of the current file are shown on the screen; false for the console.
bool input_echo();
/// One line of the current source without its end, cut at its first NUL and at 2053 bytes (the
/// rest of a longer line is dropped). A file that has ended gives "return"; the console at end of
/// input ends the program through the final exit.
struct InputLine {
    std::string text;
    bool from_console = false;
};
InputLine read_input_line(std::string_view prompt, bool prompt_written,
                          LineKind kind = LineKind::data);
/// True when the current file has ended and has already given its closing "return": whoever reads
/// on regardless of the words read (a block, a loop body) has to stop.
bool input_has_ended();
/// Raw line for the project name and RETURN waits, behind its prompt on the screen: from the
/// current file or the console, unlogged; false at end of input.
bool read_raw_line(std::string_view prompt, LineKind kind, std::string& line);
/// Answer to a stop after a page: from the console also while a file is read, unlogged; false at
/// end of input.
bool read_console_answer(std::string_view prompt, std::string& line);
void pop_input();
/// `return`: leaves the current file; after a replayed log the log is opened again.
void return_from_input();
/// Closes every file above the first `level` ones.
void close_inputs_from(int level);
/// Back to the first line of the loop, or failing that of the current file.
bool rewind_input();
/// The place of the next line in the current source, and the way back to it.
std::int64_t input_place();
bool return_to_place(std::int64_t place);
void close_all_inputs();

// The text of a loop: first put together, then read again and again like an input file while the
// log is set aside. It is kept in memory, so that sessions side by side have nothing in common.

void begin_loop_text();
void add_loop_record(std::string_view record);
/// Makes the text the current input; false when too many files are open.
bool replay_loop();
bool loop_is_replayed();
/// Drops the loop with whatever was opened above it, and sets log and record echo back.
void discard_loop();

} // namespace quelor
