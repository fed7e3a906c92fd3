// Input sources: the console, the stack of command files, and the text of the loop that is
// replayed.
//
// A source reads its descriptor through a buffer of its own, so screen and output file are flushed
// exactly when the program is about to wait for input. All of a loop's text is in its buffer.

#include "kernel/iof.hpp"

#include "kernel/end_signal.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/process_state.hpp"
#include "kernel/project.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace quelor {

namespace {

constexpr std::size_t buffer_size = 65536;
constexpr std::size_t line_limit = record_limit + 5; // one more than a record may have, and its end
constexpr std::size_t raw_limit = 128;

constexpr int no_descriptor = -1; // of a source that is in its buffer altogether

struct Source {
    int descriptor = no_descriptor;
    bool echo = false;
    bool ended = false;         // nothing is left to read
    bool closed_itself = false; // has given the "return" of its end
    std::vector<char> buffer{};
    std::size_t next = 0, filled = 0;
    std::int64_t start = 0; // place of the buffer's first byte in the source
};

struct InputState {
    Source console{.descriptor = STDIN_FILENO};
    std::vector<Source> stack;
    int loop_level = 0; // depth of the loop while it is replayed
    std::vector<char> loop_text;
    bool log_on_saved = false;

    ~InputState() {
        for (const Source& source : stack)
            close(source.descriptor);
    }
};

InputState& state() {
    return process_state<InputState>();
}

/// Reads into the buffer; the number of bytes, or none at the end of the source or on a fault.
std::size_t read_bytes(int descriptor, std::span<char> buffer) {
    flush_unit(unit_screen);
    flush_unit(unit_output);
    reading_from(descriptor);
    pollfd ready{.fd = descriptor, .events = POLLIN, .revents = 0};
    poll(&ready, 1, -1); // a pipe that nobody has opened for writing yet
    ssize_t got = 0;
    do
        got = read(descriptor, buffer.data(), buffer.size());
    while (got < 0 && errno == EINTR);
    reading_from(STDIN_FILENO);
    obey_end_signal();
    return got > 0 ? as_size(got) : 0;
}

bool fill(Source& source) {
    if (source.ended) return false;
    std::size_t got = 0;
    if (source.descriptor != no_descriptor) {
        source.buffer.resize(buffer_size);
        got = read_bytes(source.descriptor, source.buffer);
    }
    if (got == 0) {
        source.ended = true;
        return false;
    }
    source.start += static_cast<std::int64_t>(source.filled);
    source.next = 0;
    source.filled = got;
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
    obey_end_signal();
    if (edited == EditedLine::no_terminal) {
        write_text(unit_screen, prompt);
        return take_line(state().console, limit, line) == LineEnd::newline || !line.empty();
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
    return state().stack.empty() ? state().console : state().stack.back();
}

/// Goes to a place in the source.
bool go_to(Source& source, std::int64_t place) {
    const std::int64_t within = place - source.start;
    if (within < 0 || within > static_cast<std::int64_t>(source.filled)) {
        if (lseek(source.descriptor, place, SEEK_SET) != place) return false;
        source.filled = 0;
        source.start = place;
    }
    source.next = as_size(place - source.start);
    source.closed_itself = false;
    source.ended = false;
    return true;
}

/// Room on the stack; a message where there is none.
bool has_room() {
    if (input_depth() < input_levels) return true;
    print_both("         Filein command ignored; too many files opened\n");
    return false;
}

void restore_after_loop() {
    state().loop_level = 0;
    set_log_on(state().log_on_saved);
    set_echo_flag(true);
}

} // namespace

int open_input_file(std::string_view name, bool echo) {
    if (!has_room()) return 0;
    const int descriptor = open(std::string(name).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return 0;
    fcntl(descriptor, F_SETFL, O_RDONLY); // the opening of a pipe does not wait, the reading does
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || S_ISDIR(status.st_mode)) {
        close(descriptor);
        return 0;
    }
    state().stack.push_back(Source{.descriptor = descriptor, .echo = echo});
    return input_depth();
}

int input_depth() {
    return static_cast<int>(state().stack.size());
}
bool input_is_console() {
    return state().stack.empty();
}
bool input_echo() {
    return current_source().echo;
}

InputLine read_input_line(std::string_view prompt, bool prompt_written, LineKind kind) {
    obey_end_signal();
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
    if (!state().stack.empty()) close_inputs_from(input_depth() - 1);
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
        if (state().stack.back().descriptor != no_descriptor)
            close(state().stack.back().descriptor);
        state().stack.pop_back();
    }
    if (state().loop_level > level) restore_after_loop();
}

bool rewind_input() {
    if (input_is_console()) return false;
    Source& source =
        state().loop_level > 0 ? state().stack[as_size(state().loop_level) - 1] : current_source();
    return go_to(source, 0);
}

std::int64_t input_place() {
    const Source& source = current_source();
    return source.start + static_cast<std::int64_t>(source.next);
}

bool return_to_place(std::int64_t place) {
    return go_to(current_source(), place);
}

void close_all_inputs() {
    close_inputs_from(0);
    discard_loop();
}

void begin_loop_text() {
    state().loop_text.clear();
}

void add_loop_record(std::string_view record) {
    state().loop_text.insert(state().loop_text.end(), record.begin(), record.end());
    state().loop_text.push_back('\n');
}

bool replay_loop() {
    if (!has_room()) return false;
    Source loop;
    loop.buffer = std::move(state().loop_text);
    loop.filled = loop.buffer.size();
    state().stack.push_back(std::move(loop));
    state().loop_level = input_depth();
    state().log_on_saved = log_on();
    set_log_on(false);
    return true;
}

bool loop_is_replayed() {
    return state().loop_level > 0;
}

void discard_loop() {
    if (loop_is_replayed()) close_inputs_from(state().loop_level - 1);
}

} // namespace quelor
