// Input sources: the console, the stack of command files, and the loop file.
//
// A source reads its descriptor through a buffer of its own, so the screen is flushed exactly when
// the program is about to wait for the console, and a loop file that fits the buffer is read from
// the disk once however often it is rewound.

#include "kernel/iof.hpp"

#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/project.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace quelor {

namespace {

constexpr std::size_t buffer_size = 65536;
constexpr std::size_t line_limit = record_limit + 5; // one more than a record may have, and its end
constexpr std::size_t raw_limit = 128;

struct Source {
    int descriptor = -1;
    bool echo = false;
    bool ended = false;         // nothing is left to read
    bool closed_itself = false; // has given the "return" of its end
    std::vector<char> buffer{};
    std::size_t next = 0, filled = 0;
    bool holds_start = true; // the buffer begins at the file's first byte
};

struct InputState {
    Source console{.descriptor = STDIN_FILENO};
    std::vector<Source> stack;
    int loop_level = 0; // depth of the loop file while it is read
    std::FILE* loop_capture = nullptr;
    bool loop_write_failed = false;
    bool log_on_saved = false;
};

InputState state;

bool fill(Source& source) {
    if (source.ended) return false;
    if (source.descriptor == STDIN_FILENO) flush_unit(unit_screen);
    source.buffer.resize(buffer_size);
    ssize_t got = 0;
    do
        got = read(source.descriptor, source.buffer.data(), buffer_size);
    while (got < 0 && errno == EINTR);
    if (got <= 0) {
        source.ended = true;
        return false;
    }
    source.holds_start = source.filled == 0 && source.holds_start;
    source.next = 0;
    source.filled = as_size(got);
    return true;
}

enum class LineEnd { newline, end_of_source };

/// Takes the next line: its first `limit` bytes, up to a NUL, without its end.
LineEnd take_line(Source& source, std::size_t limit, std::string& line) {
    line.clear();
    bool complete = false;
    while (!complete) {
        if (source.next == source.filled && !fill(source)) break;
        const char* begin = source.buffer.data() + source.next;
        const char* end = source.buffer.data() + source.filled;
        const char* newline = std::find(begin, end, '\n');
        complete = newline != end;
        const auto length = as_size(newline - begin);
        line.append(begin, std::min(length, limit - std::min(limit, line.size())));
        source.next += length + (complete ? 1 : 0);
    }
    line.resize(std::min(line.size(), line.find('\0')));
    if (line.ends_with('\r')) line.pop_back();
    return complete ? LineEnd::newline : LineEnd::end_of_source;
}

void trim_end(std::string& text) {
    text.resize(text.find_last_not_of(' ') + 1);
}

/// Next line of the console behind its prompt, by the line editor where there is one; false at the
/// end of input.
bool take_console_line(std::string_view prompt, LineKind kind, std::size_t limit,
                       std::string& line) {
    const EditedLine edited = edit_line(prompt, kind, line);
    if (edited == EditedLine::no_terminal) {
        write_text(unit_screen, prompt);
        return take_line(state.console, limit, line) == LineEnd::newline || !line.empty();
    }
    line.resize(std::min(line.size(), limit));
    return edited == EditedLine::complete;
}

InputLine read_console_line(std::string_view prompt, LineKind kind) {
    InputLine line{.text = {}, .from_console = true};
    if (!take_console_line(prompt, kind, line_limit, line.text)) {
        write_text(unit_screen, "\n");
        final_exit(false);
    }
    trim_end(line.text);
    log_line(line.text);
    return line;
}

Source& current_source() {
    return state.stack.empty() ? state.console : state.stack.back();
}

std::string loop_file_name() {
    return std::string(project_name()) + ".LuP";
}

void restore_after_loop() {
    state.loop_level = 0;
    std::remove(loop_file_name().c_str());
    set_log_on(state.log_on_saved);
    set_echo_flag(true);
}

} // namespace

int open_input_file(std::string_view name, bool echo) {
    if (input_depth() == input_levels) {
        print_both("         Filein command ignored; too many files opened\n");
        return 0;
    }
    const int descriptor = open(std::string(name).c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) return 0;
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || S_ISDIR(status.st_mode)) {
        close(descriptor);
        return 0;
    }
    state.stack.push_back(Source{.descriptor = descriptor, .echo = echo});
    return input_depth();
}

int input_depth() {
    return static_cast<int>(state.stack.size());
}
bool input_is_console() {
    return state.stack.empty();
}
bool input_echo() {
    return current_source().echo;
}

InputLine read_input_line(std::string_view prompt, bool prompt_written, LineKind kind) {
    if (input_is_console()) return read_console_line(prompt_written ? "" : prompt, kind);
    Source& source = current_source();
    InputLine line;
    const LineEnd end = take_line(source, line_limit, line.text);
    // A last line of one character without a line end is taken for the end, too.
    if (end == LineEnd::end_of_source && line.text.size() <= 1) {
        line.text = "return";
        source.closed_itself = true;
    }
    return line;
}

bool input_has_ended() {
    return current_source().closed_itself;
}

bool read_raw_line(std::string_view prompt, LineKind kind, std::string& line) {
    if (input_is_console()) return take_console_line(prompt, kind, raw_limit, line);
    write_text(unit_screen, prompt);
    return take_line(current_source(), raw_limit, line) == LineEnd::newline || !line.empty();
}

bool read_console_answer(std::string_view prompt, std::string& line) {
    return take_console_line(prompt, LineKind::answer, raw_limit, line);
}

void pop_input() {
    if (!state.stack.empty()) close_inputs_from(input_depth() - 1);
}

void return_from_input() {
    pop_input();
    if (input_is_console() && !log_is_open()) {
        if (open_log())
            set_log_on(true);
        else
            print_both(" \n\tError returning from file.\n");
    }
    flush_unit(unit_output);
}

void close_inputs_from(int level) {
    while (input_depth() > level) {
        close(state.stack.back().descriptor);
        state.stack.pop_back();
    }
    if (state.loop_level > level) restore_after_loop();
}

bool rewind_input() {
    if (input_is_console()) return false;
    Source& source =
        state.loop_level > 0 ? state.stack[as_size(state.loop_level) - 1] : current_source();
    if (!source.holds_start) {
        if (lseek(source.descriptor, 0, SEEK_SET) != 0) return false;
        source.filled = 0;
        source.holds_start = true;
    }
    source.next = 0;
    source.closed_itself = false;
    source.ended = false;
    return true;
}

void close_all_inputs() {
    close_inputs_from(0);
    discard_loop_file();
}

bool create_loop_file() {
    state.loop_capture = std::fopen(loop_file_name().c_str(), "w");
    state.loop_write_failed = false;
    return state.loop_capture != nullptr;
}

void write_loop_record(std::string_view record) {
    const bool written =
        std::fwrite(record.data(), 1, record.size(), state.loop_capture) == record.size() &&
        std::fputc('\n', state.loop_capture) != EOF;
    state.loop_write_failed = state.loop_write_failed || !written;
}

bool replay_loop_file() {
    const bool closed = std::fclose(state.loop_capture) == 0;
    state.loop_capture = nullptr;
    const bool whole = closed && !state.loop_write_failed;
    const int level = whole ? open_input_file(loop_file_name(), false) : 0;
    if (level == 0) {
        std::remove(loop_file_name().c_str());
        return false;
    }
    state.loop_level = level;
    state.log_on_saved = log_on();
    set_log_on(false);
    return true;
}

bool loop_file_is_read() {
    return state.loop_level > 0;
}

void discard_loop_file() {
    if (state.loop_capture) {
        std::fclose(state.loop_capture);
        state.loop_capture = nullptr;
        std::remove(loop_file_name().c_str());
    }
    if (loop_file_is_read()) close_inputs_from(state.loop_level - 1);
}

} // namespace quelor
