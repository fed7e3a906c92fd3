// One row a command: dispatch, `help`, `index` and the tests of the table are all made from it.
#pragma once

#include <array>
#include <initializer_list>
#include <span>
#include <string_view>

namespace quelor {

struct Command {
    std::array<std::string_view, 3> words; ///< the word, then its aliases; unused entries empty
    void (*run)(std::string_view word);    ///< gets the word typed
    std::string_view summary;              ///< its line in `index`
    std::string_view help;                 ///< its text in `help`
};

/// The rows of one family of commands.
using Family = std::span<const Command> (*)();

/// A list that may be empty, as the member of a table: `list_of(families)`.
template <class T> constexpr std::span<const T> list_of(const std::initializer_list<T>& list) {
    return {list.begin(), list.size()};
}

/// A dispatch table: the families of rows of one dispatcher, its index topic and heading.
struct CommandTable {
    std::string_view name;    ///< "mat_cmd"
    std::string_view topic;   ///< "matrix"
    std::string_view heading; ///< "      MATRIX COMMANDS"
    std::span<const Family> families;
    std::span<const std::string_view> planned; ///< words of the chain not built yet
};

// The nine tables; each is defined in the file of its name.
const CommandTable& quelorzt_cmd();
const CommandTable& util_cmd();
const CommandTable& db_cmd();
const CommandTable& mat_cmd();
const CommandTable& func_cmd();
const CommandTable& fem_cmd();
const CommandTable& fe_elm_cmd();
const CommandTable& misc_cmd();
const CommandTable& loop_cmd();

/// The tables in their fixed order of dispatch.
std::span<const CommandTable* const> command_chain();
/// The row that claims the word; null when none does. `chain` holds tables of `command_chain`.
const Command* find_command(std::span<const CommandTable* const> chain, std::string_view word);
/// True when the word belongs to a command that is not built yet.
bool is_planned(std::span<const CommandTable* const> chain, std::string_view word);

} // namespace quelor
