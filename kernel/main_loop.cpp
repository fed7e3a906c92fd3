// The loop at the heart of the program, and its nested form.

#include "kernel/main_loop.hpp"

#include "kernel/alias.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/iof.hpp"
#include "kernel/utilities.hpp"

#include <new>
#include <stdexcept>
#include <vector>

namespace quelor {

static constexpr std::string_view prompt = "quelor-zt> ";

/// What Ctrl-C does while commands come from files: the rest of the files and loops is not run.
static void leave_input_files() {
    if (input_is_console()) return;
    while (!input_is_console())
        return_from_input();
    print_both(" \n\tInterrupted; the input files and loops are left\n");
}

/// The next command word with its alias translated; empty for a blank or comment record.
static std::string read_command() {
    if (take_interrupt()) leave_input_files();
    read_record(prompt, prompt, echo_flag());
    return std::string(alias_to_internal(get_command_word()));
}

/// Runs a command. Scratch memory that is refused gives it up; its own clearing up has then freed
/// what it had taken.
static void run(const Command& command, std::string_view word) {
    try {
        return command.run(word);
    } catch (const std::bad_alloc&) {
    } catch (const std::length_error&) { // a size beyond all memory
    }
    print_both(" \n\tNot enough memory for command \"" + std::string(word) +
               "\"; it is given up, the session goes on\n");
}

void dispatch(std::span<const CommandTable* const> chain, std::string_view word) {
    if (const Command* command = find_command(chain, word)) return run(*command, word);
    if (is_planned(chain, word)) {
        return write_both("('    Command \"', a, '\" is not available in this version')",
                          {alias_to_user(word)});
    }
    write_both("('    Command \"', a, '\" not found')", {word.substr(0, word.find(' '))});
}

void main_loop(std::string_view first) {
    dispatch(command_chain(), first);
    while (true) {
        const std::string word = read_command();
        if (!word.empty()) dispatch(command_chain(), word);
    }
}

void nested_command_line() {
    print_both(
        " \n\tWarning: You have exited to the command line from inside a command. Be sure not to delete or change existing data in such a way that will cause the originating command to fail. The command exit returns to the originating command. Quit will quit the program.\n");
    std::vector<const CommandTable*> chain(command_chain().begin(), command_chain().end());
    std::erase(chain, &fem_cmd());
    for (std::string word = read_command(); word != "exit"; word = read_command()) {
        if (!word.empty()) dispatch(chain, word);
    }
}

} // namespace quelor
