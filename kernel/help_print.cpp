// The word-wrapping printer of messages and help texts.
#include "kernel/help_print.hpp"

#include "kernel/fortfile.hpp"
#include "kernel/iof.hpp"

#include <algorithm>
#include <string>

namespace quelor {

namespace {

constexpr std::size_t base_level = 2;    // levels of indent at the start of each line of the text
constexpr std::size_t level_width = 2;   // blanks a level
constexpr std::size_t screen_width = 79; // characters of a printed line, indent included
constexpr std::size_t least_width = 20;  // of a line under any number of tabs

/// Output of lines with a stop after each page.
struct Pager {
    int unit;
    int& line_count;
    int page_length;
    bool quit = false;

    void line(const std::string& text) {
        write_text(unit, text + "\n");
        if (++line_count < page_length) return;
        line_count = 0;
        quit = user_quits_page();
    }
};

/// Length of the piece of a line that is printed next: whole, or up to the last blank before the
/// limit that has a word before it, or up to the limit.
std::size_t piece_length(std::string_view line, std::size_t limit) {
    if (line.size() <= limit) return line.size();
    const auto blank = line.substr(0, limit).find_last_of(' ');
    const auto word = line.find_first_not_of(' ');
    return blank == std::string_view::npos || blank < word ? limit : blank;
}

/// One line of the text, in as many printed lines as it needs.
void print_line(Pager& pager, std::string_view line) {
    const auto tabs = std::min(line.find_first_not_of('\t'), line.size());
    line.remove_prefix(tabs);
    const std::size_t indent = level_width * (base_level + tabs);
    const std::size_t limit =
        indent + least_width < screen_width ? screen_width - indent : least_width;
    do {
        const auto length = piece_length(line, limit);
        pager.line(std::string(indent, ' ').append(line.substr(0, length)));
        line.remove_prefix(length);
        if (line.starts_with(' ')) line.remove_prefix(1); // the blank of the cut
    } while (!line.empty() && !pager.quit);
}

} // namespace

bool user_quits_page() {
    std::string answer;
    return !read_console_answer("--q to quit--", answer) || answer.starts_with('q');
}

int wrap_print(int unit, std::string_view text, int& line_count, int page_length) {
    if (page_length < 1) return 0;
    const auto last = text.find_last_not_of('\t');
    text = text.substr(0, last == std::string_view::npos ? 0 : last + 1);
    Pager pager{unit, line_count, page_length};
    while (!text.empty() && !pager.quit) {
        const auto end = std::min(text.find('\n'), text.size());
        print_line(pager, text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        while (text.starts_with('\n') && !pager.quit) { // further line ends are blank lines
            pager.line("");
            text.remove_prefix(1);
        }
    }
    return pager.quit ? 1 : 0;
}

int print_lines(int unit, std::string_view text, int& line_count, int page_length) {
    Pager pager{unit, line_count, page_length};
    while (!text.empty() && !pager.quit) {
        const auto end = std::min(text.find('\n'), text.size());
        pager.line(std::string(text.substr(0, end)));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return pager.quit ? 1 : 0;
}

} // namespace quelor
