// The console when a person sits at it: standard input and output are both a terminal. Lines are
// then edited, command words, array and file names completed, and the commands kept from session to
// session. Nothing here acts on a session whose input or output is a pipe or a file.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quelor {

enum class LineKind : std::uint8_t {
    command, ///< completed, and kept in the history
    data,    ///< edited only
    answer,  ///< of a stop or a wait: edited only, and Ctrl-C ends it
};

enum class EditedLine : std::uint8_t { complete, end_of_input, no_terminal };

/// Writes the prompt and reads one line, without its end, by the line editor. `no_terminal`:
/// nothing has been written or read. The line that Ctrl-C gives up is asked for anew; an answer is
/// then at its end.
EditedLine edit_line(std::string_view prompt, LineKind kind, std::string& line);

/// True once after a Ctrl-C that came while no line was being typed.
bool take_interrupt();

} // namespace quelor
