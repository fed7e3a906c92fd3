// The word-wrapping printer of messages and help texts, for a screen of 80 columns.
#pragma once

#include <string_view>

namespace quelor {

/// Writes a text on a unit, wrapped at blanks and indented: two levels of two blanks, and one level
/// more for each tab at the start of a line of the text. When `line_count` (in/out: lines printed
/// since the last stop) reaches `page_length`, the user is asked whether to go on.
/// Returns 1 when the user quits, otherwise 0. A page length below 1 prints nothing.
int wrap_print(int unit, std::string_view text, int& line_count, int page_length);
/// The same for lines that stand as they are, each ended by a newline.
int print_lines(int unit, std::string_view text, int& line_count, int page_length);

/// The stop after a page of the screen: asks on the console; true when the answer begins with "q",
/// and at end of input.
bool user_quits_page();

} // namespace quelor
