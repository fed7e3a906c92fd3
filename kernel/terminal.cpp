// Line editing by libedit. The terminal is in the editor's mode only while a line is typed; while a
// command runs it is as the user's shell has left it, but for Ctrl-C, which must not end a session
// with an unsaved database: it is noted, and the main loop leaves the input files at the next
// command.

#include "kernel/terminal.hpp"

#include "kernel/completion.hpp"
#include "kernel/end_signal.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/history.hpp"
#include "kernel/process_state.hpp"

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <histedit.h>
#include <langinfo.h>
#include <unistd.h>

namespace quelor {

namespace {

constexpr int history_limit = 1000; // lines of earlier commands that can be called back
constexpr std::size_t list_limit = 200;

struct TerminalState {
    bool begun = false;
    EditLine* editor = nullptr;  // null without a terminal, or on one that has no cursor
    History* commands = nullptr; // the one that command lines see
    History* empty = nullptr;    // what data lines see
    std::string file;            // of the history
    locale_t characters = nullptr;
    std::string prompt;
    LineKind kind = LineKind::data;
    bool given_up = false;

    ~TerminalState();
};

TerminalState& state() {
    return process_state<TerminalState>();
}

// What the handler of Ctrl-C knows and leaves.
volatile std::sig_atomic_t interrupted = 0, line_editing = 0;

void note_interrupt(int) {
    interrupted = 1;
    if (!line_editing) return; // the line that is being typed may be all that there is to give up
    constexpr std::string_view note =
        "\n(The command in hand runs to its end; Ctrl-\\ ends the program without saving.)\n";
    const int saved = errno;
    [[maybe_unused]] const ssize_t written = write(STDOUT_FILENO, note.data(), note.size());
    errno = saved;
}

/// Characters are those of the user's locale while the editor works, and UTF-8 where that knows no
/// more than ASCII; the rest of the program stays in the locale "C".
class UserCharacters {
public:
    UserCharacters() : before_(uselocale(state().characters)) {}
    ~UserCharacters() { uselocale(before_); }
    UserCharacters(const UserCharacters&) = delete;
    UserCharacters& operator=(const UserCharacters&) = delete;

private:
    locale_t before_;
};

locale_t user_characters() {
    const locale_t users = newlocale(LC_CTYPE_MASK, "", nullptr);
    if (users && std::string_view(nl_langinfo_l(CODESET, users)) != "ANSI_X3.4-1968") return users;
    if (users) freelocale(users);
    return newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
}

// --- keys ----------------------------------------------------------------------------------------

char* prompt_text(EditLine*) {
    return state().prompt.data();
}

std::size_t screen_columns(EditLine* editor) {
    int columns = 80;
    el_get(editor, EL_GETTC, "co", &columns);
    return as_size(std::max(columns, 20));
}

/// Row of the screen, from the first of the line that is edited, on which `end` stands.
std::size_t row_of(const LineInfo& line, const char* end, std::size_t screen) {
    const auto continues_character = [](char c) { return (c & 0xc0) == 0x80; };
    const auto bytes = as_size(end - line.buffer);
    const auto more = std::count_if(line.buffer, end, continues_character);
    return (state().prompt.size() + bytes - as_size(more)) / screen;
}

unsigned char give_up_line(EditLine* editor, int) {
    state().given_up = true;
    const LineInfo& line = *el_line(editor);
    const auto screen = screen_columns(editor);
    const auto below = row_of(line, line.lastchar, screen) - row_of(line, line.cursor, screen);
    write_text(unit_screen, "^C" + std::string(1 + below, '\n'));
    flush_unit(unit_screen);
    return CC_NEWLINE;
}

/// The editor puts the terminal back into the shell's mode, and into its own when it goes on.
unsigned char suspend(EditLine* editor, int) {
    std::raise(SIGTSTP);
    el_set(editor, EL_REFRESH); // draws the line at the place where the shell has left the cursor
    return CC_NORM;
}

/// Names in columns, each row behind a line end.
std::string in_columns(std::span<const std::string> names, std::size_t screen) {
    const std::size_t width = std::ranges::max(names, {}, &std::string::size).size() + 2;
    const std::size_t per_row = std::max<std::size_t>(1, screen / width);
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i % per_row == 0) text += '\n';
        text += names[i];
        const bool row_ends = i % per_row == per_row - 1 || i + 1 == names.size();
        if (!row_ends) text.append(width - names[i].size(), ' ');
    }
    return text;
}

/// Shows the names below the line. The editor then draws its line anew, from as many rows above as
/// the cursor was below the line's first row: that many are left empty.
void list_names(EditLine* editor, const std::vector<std::string>& names) {
    const auto screen = screen_columns(editor);
    const LineInfo& line = *el_line(editor);
    const auto row = row_of(line, line.cursor, screen);
    std::string text(row_of(line, line.lastchar, screen) - row, '\n');
    text += in_columns(std::span(names).first(std::min(names.size(), list_limit)), screen);
    if (names.size() > list_limit)
        text += "\n... and " + std::to_string(names.size() - list_limit) + " more";
    write_text(unit_screen, text.append(1 + row, '\n'));
    flush_unit(unit_screen);
}

/// Tab: completes as far as the names agree, and shows them when that is no further than typed. In
/// a data line it stands for itself.
unsigned char complete_word(EditLine* editor, int) {
    if (state().kind != LineKind::command)
        return el_insertstr(editor, "\t") == 0 ? CC_REFRESH : CC_ERROR;
    const LineInfo* line = el_line(editor);
    const std::string typed(line->buffer, line->cursor);
    const Completion completion = complete(typed);
    if (completion.names.empty()) return CC_REFRESH_BEEP;
    std::string more(common_beginning(completion.names).substr(completion.word.size()));
    if (completion.names.size() == 1 && !completion.names.front().ends_with('/')) more += ' ';
    if (more.empty()) {
        list_names(editor, completion.names);
        return CC_REDISPLAY;
    }
    return el_insertstr(editor, more.c_str()) == 0 ? CC_REFRESH : CC_ERROR;
}

/// The user's own ~/.editrc comes first, so that completion and Ctrl-C work in its mode, too.
void set_keys(EditLine* editor) {
    el_set(editor, EL_PROMPT, prompt_text);
    el_set(editor, EL_EDITOR, "emacs");
    el_source(editor, nullptr);
    el_set(editor, EL_SIGNAL, 1);
    el_set(editor, EL_ADDFN, "complete-word", "Completes a word", complete_word);
    el_set(editor, EL_ADDFN, "give-up-line", "Gives up the line", give_up_line);
    el_set(editor, EL_ADDFN, "suspend", "Stops the program until fg", suspend);
    el_set(editor, EL_SETTY, "-d", "-isig", nullptr); // Ctrl-C is a key while a line is typed
    constexpr const char* keys[][2] = {
        {"^I", "complete-word"},
        {"^C", "give-up-line"},
        {"^Z", "suspend"},
        {"^R", "em-inc-search-prev"},
        {"^S", "em-inc-search-next"},
        {"^W", "ed-delete-prev-word"},
        {"\\e[3~", "ed-delete-next-char"},
        {"\\e[1~", "ed-move-to-beg"},
        {"\\e[4~", "ed-move-to-end"},
        {"\\e[1;5D", "ed-prev-word"},
        {"\\e[1;5C", "em-next-word"},
    };
    for (const auto& [key, function] : keys)
        el_set(editor, EL_BIND, key, function, nullptr);
}

// --- history -------------------------------------------------------------------------------------

History* make_history() {
    History* const made = history_init();
    HistEvent event{};
    history(made, &event, H_SETSIZE, history_limit);
    history(made, &event, H_SETUNIQUE, 1);
    return made;
}

void remember(std::string line) {
    HistEvent event{};
    line.resize(line.find_last_not_of(" \t") + 1);
    if (line.empty()) return;
    const bool same = history(state().commands, &event, H_FIRST) == 0 && event.str == line;
    if (same) return;
    history(state().commands, &event, H_ENTER, line.c_str());
    append_history(state().file, line);
}

TerminalState::~TerminalState() {
    interrupted = 0;
    line_editing = 0;
    if (!editor) return;
    el_end(editor);
    history_end(commands);
    history_end(empty);
    freelocale(characters);
}

// --- the editor ----------------------------------------------------------------------------------

bool has_cursor() {
    const char* const terminal = std::getenv("TERM");
    return terminal && *terminal != '\0' && std::string_view(terminal) != "dumb";
}

void begin_editor() {
    state().characters = user_characters();
    const UserCharacters characters;
    state().editor = el_init("quelor-zt", stdin, stdout, stderr);
    if (!state().editor) return;
    line_editing = 1;
    set_keys(state().editor);
    state().commands = make_history();
    state().empty = make_history();
    state().file = history_file();
    HistEvent event{};
    for (const std::string& line : read_history(state().file, history_limit))
        history(state().commands, &event, H_ENTER, line.c_str());
}

void begin() {
    state().begun = true;
    if (!isatty(STDIN_FILENO) || !isatty(STDOUT_FILENO)) return;
    struct sigaction action {};
    action.sa_handler = note_interrupt;
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    if (has_cursor()) begin_editor();
}

} // namespace

EditedLine edit_line(std::string_view prompt, LineKind kind, std::string& line) {
    if (!state().begun) begin();
    if (!state().editor) return EditedLine::no_terminal;
    const UserCharacters characters;
    const auto last_line = prompt.rfind('\n') + 1;
    write_text(unit_screen, prompt.substr(0, last_line));
    flush_unit(unit_screen);
    flush_unit(unit_output);
    state().prompt = prompt.substr(last_line);
    state().kind = kind;
    el_set(state().editor, EL_HIST, history,
           kind == LineKind::command ? state().commands : state().empty);
    do {
        state().given_up = false;
        int count = 0;
        const char* const typed = el_gets(state().editor, &count);
        // A byte that is no character, or a signal, spoils the line and not the session.
        const bool spoilt = !typed && count < 0 && (errno == EILSEQ || errno == EINTR);
        if (spoilt && end_signal() == 0) state().given_up = true;
        if (!typed && !state().given_up) return EditedLine::end_of_input;
        line = typed ? typed : "";
    } while (state().given_up && kind != LineKind::answer);
    if (state().given_up) return EditedLine::end_of_input;
    if (line.ends_with('\n')) line.pop_back();
    if (kind == LineKind::command) remember(line);
    return EditedLine::complete;
}

bool take_interrupt() {
    const bool was = interrupted != 0;
    interrupted = 0;
    return was;
}

} // namespace quelor
