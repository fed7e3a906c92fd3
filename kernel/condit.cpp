// Conditionals and loops. There is no parse tree: a block that is not wanted is read and dropped,
// and the text of a loop is put together, then read once for each pass.

#include "kernel/condit.hpp"

#include "kernel/dbfgen.hpp"
#include "kernel/gencom.hpp"
#include "kernel/iof.hpp"
#include "kernel/process_state.hpp"
#include "kernel/project.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace quelor {

namespace {

constexpr std::string_view block_prompt = "tivla> ";
constexpr int max_levels = 15;

enum class LoopKind { while_loop, do_loop };

struct LoopWords {
    std::string_view begin, end;
};

constexpr LoopWords words_of(LoopKind kind) {
    return kind == LoopKind::while_loop ? LoopWords{"while", "end_while"}
                                        : LoopWords{"do", "end_do"};
}

struct Level {
    LoopKind kind;
    std::int64_t pass; // 1 on entry
};

struct BlockState {
    std::array<Level, max_levels> levels;
    int depth = 0; // of loops; means nothing while none is replayed
    int if_depth = 0;

    Level& current() { return levels[as_size(depth) - 1]; }
};

BlockState& state() {
    return process_state<BlockState>();
}

/// Reads a record of a block. False when the input file has ended before its block did: the file is
/// left, and the caller gives up the block.
bool read_block_record() {
    if (input_has_ended()) {
        return_from_input();
        print_both(" \n\tInput file ended inside a block; the block is abandoned\n");
        return false;
    }
    read_record(block_prompt, block_prompt, echo_flag());
    return true;
}

// --- the test of `if` and `while`

enum class Condition { holds, fails, error };

constexpr std::array<std::string_view, 6> operators = {".lt. ", ".le. ", ".eq. ",
                                                       ".ge. ", ".gt. ", ".ne. "};

/// Index of the operator on the line; 6 when there is none.
std::size_t find_operator() {
    std::size_t i = 0;
    while (i < operators.size() && !has_flag(operators[i].substr(0, 4)))
        ++i;
    return i;
}

bool compare(double a, std::size_t operation, double b) {
    switch (operation) {
    case 0:
        return a < b;
    case 1:
        return a <= b;
    case 2:
        return a == b;
    case 3:
        return a >= b;
    case 4:
        return a > b;
    default:
        return a != b;
    }
}

/// First value of an integer or real array; integers are exact in a double.
std::optional<double> first_value(const ArrayRef& ref) {
    if (ref.is(type_integer)) return *static_cast<const std::int32_t*>(ref.data);
    if (ref.is(type_real)) return *static_cast<const double*>(ref.data);
    print_both(" \n\tIncorrect argument type\n");
    return {};
}

/// The value that arg1 is compared with: an array's first value, or the number right behind the
/// operator and one blank, which for an integer arg1 is rounded, halves away from zero.
std::optional<double> comparand(std::string_view arg2, std::size_t operation, bool to_integer) {
    if (const ArrayRef ref = find_array(arg2)) return first_value(ref);
    double number = 0;
    get_real_par(operators[operation], number);
    return to_integer ? std::round(number) : number;
}

Condition run_test() {
    const auto arg1 = get_arg(1), arg2 = get_arg(3); // the operator stands between them
    const ArrayRef ref = find_array(arg1);
    if (!ref) {
        not_found(arg1);
        return Condition::error;
    }
    const auto value = first_value(ref);
    if (!value) return Condition::error;
    if (is_blank(arg2)) return *value != 0 ? Condition::holds : Condition::fails;
    const auto operation = find_operator();
    if (operation == operators.size()) {
        print_both(" \n\tIllegal conditional\n");
        return Condition::error;
    }
    const auto other = comparand(arg2, operation, ref.is(type_integer));
    if (!other) return Condition::error;
    return compare(*value, operation, *other) ? Condition::holds : Condition::fails;
}

// --- if, else, endif

/// Drops records until `endif` closes the block of this depth, or its `else` begins.
void skip_block(int depth, bool stop_at_else) {
    while (state().if_depth >= depth) {
        if (!read_block_record()) {
            state().if_depth = depth - 1;
            return;
        }
        const auto word = get_command_word();
        if (word == "if") ++state().if_depth;
        if (word == "endif") --state().if_depth;
        if (word == "else" && stop_at_else && state().if_depth == depth) return;
    }
}

void cmd_if(std::string_view) {
    const int depth = ++state().if_depth;
    const Condition condition = run_test();
    if (condition == Condition::error) print_both(" \n\tSkipping to end of block\n");
    if (condition != Condition::holds) skip_block(depth, condition == Condition::fails);
}

void cmd_else(std::string_view) {
    skip_block(state().if_depth, false);
}

void cmd_endif(std::string_view) {
    --state().if_depth;
}

// --- loops

void abandon_loops() {
    state().depth = 0;
    set_echo_flag(true);
    discard_loop();
}

/// Reads to the end word of a loop; loops of its own kind inside it are counted, others are not.
/// False when next(), which reads a record, finds none.
template <class Next> bool read_to_end_word(const LoopWords& words, Next next) {
    for (int open = 1; open > 0;) {
        if (!next()) return false;
        const auto word = get_command_word();
        if (word == words.begin) ++open;
        if (word == words.end) --open;
    }
    return true;
}

/// Takes the text of the loop from its first line to its end word.
bool capture_loop(const LoopWords& words) {
    begin_loop_text();
    add_loop_record(record_text());
    return read_to_end_word(words, [] {
        const bool read = read_block_record();
        if (read) add_loop_record(record_text());
        return read;
    });
}

void start_replay() {
    if (!replay_loop()) {
        print_both(" \n\tError opening do/while LuP file - read\n");
        print_both(" \n\tError opening do/while loop file for processing\n");
        shutdown();
    }
    set_echo_flag(false);
    read_block_record(); // the loop's own first line
}

void get_par(std::string_view key, std::int32_t& value) {
    get_int_par(key, value);
}
void get_par(std::string_view key, double& value) {
    get_real_par(key, value);
}

/// What the test before a pass finds.
enum class Pass { runs, never_ends, ends };

/// Sets or advances the variable of a `do`. An integer that would pass the range of 32 bits ends
/// its loop; a step that leaves the variable as it is does not bring it any nearer to its end.
template <class T, class Wide> Pass advance_variable(T& variable, bool first_pass) {
    T first = 0, last = 0, step = 1;
    get_par("l=", last);
    get_par("s=", step);
    if (first_pass) get_par("f=", first);
    const Wide value = first_pass ? Wide{first} : Wide{variable} + Wide{step};
    variable = static_cast<T>(std::clamp(value, Wide{std::numeric_limits<T>::lowest()},
                                         Wide{std::numeric_limits<T>::max()}));
    const bool runs = step < 0 ? value >= last : value <= last;
    if (!runs) return Pass::ends;
    return first_pass && value + Wide{step} == value ? Pass::never_ends : Pass::runs;
}

Pass advance_do(bool first_pass) {
    const std::string name(get_arg(1));
    if (!array_exists(name)) create_int_scalar(name, 0);
    const ArrayRef ref = find_array(name);
    if (ref.is(type_integer)) {
        return advance_variable<std::int32_t, std::int64_t>(*static_cast<std::int32_t*>(ref.data),
                                                            first_pass);
    }
    if (ref.is(type_real)) {
        return advance_variable<double, double>(*static_cast<double*>(ref.data), first_pass);
    }
    print_both(" \n\tIncorrect argument type\n");
    return Pass::ends;
}

/// Name of the array that gives the step of a `do`; empty when a number does.
std::string step_array() {
    std::string_view text = record_text();
    text.remove_prefix(std::min(text.find("s="), text.size()));
    if (!text.starts_with("s=~")) return {};
    return std::string(text.substr(3, text.find(' ') - 3));
}

bool has_argument(std::string_view name) {
    int n = 1;
    while (!is_blank(get_arg(n)) && get_arg(n) != name)
        ++n;
    return get_arg(n) == name;
}

/// Whether the block of the `do` that begins here may end the loop though its step is 0: by a
/// break_loop, or by a command on the array that gives the step.
bool block_can_end_loop() {
    const std::string step = step_array();
    const std::int64_t place = input_place();
    bool can_end = false;
    read_to_end_word(words_of(LoopKind::do_loop), [&] {
        if (input_has_ended()) return false;
        read_record(block_prompt, block_prompt, false);
        can_end = can_end || get_command_word() == "break_loop" || has_argument(step);
        return true;
    });
    return return_to_place(place) && can_end;
}

/// Reads past the end word of the current loop and leaves its level.
void leave_loop() {
    if (!read_to_end_word(words_of(state().current().kind), read_block_record))
        return abandon_loops();
    --state().depth;
    if (state().depth == 0) abandon_loops();
}

/// Decides on the next pass; the current record is the loop's first line.
void test_pass() {
    const Level& level = state().current();
    if (level.kind == LoopKind::while_loop) {
        if (run_test() != Condition::holds) leave_loop();
        return;
    }
    const Pass pass = advance_do(level.pass == 1);
    if (pass == Pass::never_ends && !block_can_end_loop()) {
        print_both(
            " \n\tThe loop is not run: its step would not change the variable, and nothing would end it\n");
        return leave_loop();
    }
    if (pass == Pass::ends) leave_loop();
}

void begin_loop(LoopKind kind) {
    if (!loop_is_replayed()) state().depth = 0; // what a `return` out of a loop has left
    if (state().depth == max_levels) {
        print_both(" \nMaximum levels of do/while loops exceeded\n");
        shutdown();
    }
    ++state().depth;
    state().current() = {.kind = kind, .pass = 1};
    if (state().depth == 1) {
        if (!capture_loop(words_of(kind))) return abandon_loops();
        start_replay();
    }
    test_pass();
}

/// Goes back to the first line of the current loop. The enclosing loops of the same kind come first
/// in the text; so does an earlier loop beside this one, to which this one's end then returns.
bool return_to_first_line(LoopKind kind) {
    if (!rewind_input()) print_both(" \n\tError rewinding do/while file\n");
    const auto active = std::span(state().levels).first(as_size(state().depth));
    auto count = std::ranges::count(active, kind, &Level::kind);
    while (count > 0) {
        if (!read_block_record()) return false;
        if (get_command_word() == words_of(kind).begin) --count;
    }
    return true;
}

void end_loop(LoopKind kind) {
    if (!loop_is_replayed() || state().depth == 0 || state().current().kind != kind) {
        print_both(" \nEnd_while/end_do out of sequence\n");
        shutdown();
    }
    if (!return_to_first_line(kind)) return abandon_loops();
    ++state().current().pass;
    test_pass();
}

void cmd_while(std::string_view) {
    begin_loop(LoopKind::while_loop);
}
void cmd_do(std::string_view) {
    begin_loop(LoopKind::do_loop);
}
void cmd_end_while(std::string_view) {
    end_loop(LoopKind::while_loop);
}
void cmd_end_do(std::string_view) {
    end_loop(LoopKind::do_loop);
}
void cmd_break_loop(std::string_view) {
    abandon_loops();
}

void cmd_condition(std::string_view word) {
    if (word == "if") return cmd_if(word);
    if (word == "else") return cmd_else(word);
    cmd_endif(word);
}

constexpr Command condition_row[] = {
    {.words = {"if", "else", "endif"},
     .run = cmd_condition,
     .summary = "runs a block of commands on a condition",
     .help =
         "Command Syntax\n\tif arg1 [operator arg2]\n\tblock of commands\n\t[else]\n"
         "\tblock of commands\n\tendif\n\n"
         "Runs the first block if the condition holds, otherwise the block behind else. arg1 is "
         "an integer or real array, of which the first value is taken; arg2 is such an array or "
         "a number. Without an operator the condition is that arg1 is not zero.\n\n"
         "The operators are .lt. .le. .eq. .ge. .gt. .ne. Only one space may separate the "
         "operator and arg2, and a number arg2 cannot be negative: use an array. For an integer "
         "arg1 a number is rounded to the nearest integer.\n\n"
         "Blocks may be nested, also in loops.\n\n"
         "Example\n\tif load .gt. 100\n\tsetr load v=100\n\telse\n\tprint load\n\tendif\n\n"
         "See Also\n\twhile, do\n"},
};

constexpr Command loop_row[] = {
    {.words = {"while"},
     .run = cmd_while,
     .summary = "repeats a block while a condition holds",
     .help = "Command Syntax\n\twhile arg1 [operator arg2]\n\tblock of commands\n\tend_while\n\n"
             "Repeats the block as long as the condition holds; it is tested before each pass. The "
             "condition is that of the command if.\n\n"
             "While and do commands may have a combined nesting of 15 levels. Do/while loops in "
             "separate files may not be active at one time, and a filein command must not be given "
             "from inside a loop if the loop is in an input file. A return command must not occur "
             "inside the body of a do/while loop, though it may occur in a file read in a loop. Of "
             "two loops of the same kind, one after the other inside a third, the second does not "
             "work.\n\n"
             "Example\n\tsetr x v=1\n\twhile x .lt. 100\n\tadd x x x\n\tend_while\n\n"
             "See Also\n\tend_while, do, break_loop, if\n"},
    {.words = {"end_while"},
     .run = cmd_end_while,
     .summary = "ends the block of a while",
     .help = "Command Syntax\n\tend_while\n\nEnds the block of a while.\n\n"
             "Example\n\twhile x .lt. 100\n\tadd x x x\n\tend_while\n\n"
             "See Also\n\twhile\n"},
    {.words = {"do"},
     .run = cmd_do,
     .summary = "repeats a block, counting",
     .help =
         "Command Syntax\n\tdo arg1 f=? l=? [s=?]\n\tblock of commands\n\tend_do\n\n"
         "Repeats the block with arg1 going from f to l by steps of s. arg1 is an integer or a "
         "real scalar, and is created as an integer if it does not exist; it stays after the "
         "loop. f and l are 0 and s is 1 by default. With a negative step the loop counts down. "
         "The limit and the step may be given as ~name, and are looked up before each pass. A loop "
         "whose step does not change arg1, as s=0.5 does not change an integer, is not run unless a "
         "break_loop stands in its block.\n\n"
         "The rules of the command while hold for do as well.\n\n"
         "Example\n\tdo i f=1 l=9 s=2\n\tprinti i\n\tend_do\n\n"
         "See Also\n\tend_do, while, break_loop\n"},
    {.words = {"end_do"},
     .run = cmd_end_do,
     .summary = "ends the block of a do",
     .help = "Command Syntax\n\tend_do\n\nEnds the block of a do.\n\n"
             "Example\n\tdo i f=1 l=3\n\tprinti i\n\tend_do\n\n"
             "See Also\n\tdo\n"},
    {.words = {"break_loop"},
     .run = cmd_break_loop,
     .summary = "leaves all loops",
     .help = "Command Syntax\n\tbreak_loop\n\n"
             "Goes on behind the loop. A break_loop command causes the exit of an entire do/while "
             "loop, not just the \"subloop\" in the case of nested loops.\n\n"
             "Example\n\tdo i f=1 l=100\n\tif i .gt. 3\n\tbreak_loop\n\tendif\n\tend_do\n\n"
             "See Also\n\twhile, do\n"},
};

} // namespace

std::span<const Command> condition_rows() {
    return condition_row;
}
std::span<const Command> loop_rows() {
    return loop_row;
}

} // namespace quelor
