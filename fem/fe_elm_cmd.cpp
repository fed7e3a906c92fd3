// The table of the element commands, elem01 to elem40 and pelem01 to pelem40, made from the element
// table.

#include "fem/elemutil.hpp"
#include "kernel/alias.hpp"

#include <deque>
#include <string>
#include <vector>

namespace quelor {

namespace {

bool is_planned(const ElementRow& row) {
    return !row.routine && !row.alias.empty();
}

/// Slot of a word: its last two digits.
int slot_of(std::string_view word) {
    const std::size_t n = word.size();
    return (word[n - 2] - '0') * 10 + (word[n - 1] - '0');
}

void run_input(std::string_view word) {
    call_element(slot_of(word), {0, 0, 0});
}
void run_print(std::string_view word) {
    call_element(slot_of(word), {4, 1, 0});
}

/// Two rows for each slot that is built.
std::span<const Command> element_command_rows() {
    static std::deque<std::string> summaries;
    static const std::vector<Command> commands = [] {
        std::vector<Command> all;
        for (const ElementRow& row : element_rows()) {
            if (!row.routine) continue;
            all.push_back({.words = {element_word(row.slot)},
                           .run = run_input,
                           .summary = row.kind,
                           .help = row.help});
            summaries.push_back("print: " + std::string(row.kind));
            all.push_back({.words = {print_element_word(row.slot)},
                           .run = run_print,
                           .summary = summaries.back(),
                           .help = row.print_help});
        }
        return all;
    }();
    return commands;
}

/// The words of unused slots, as many to a row as it holds.
std::span<const Command> unused_element_rows() {
    static const std::vector<Command> commands = [] {
        // The backslashes of the help text are characters of it.
        const Command none{.words = {},
                           .run = run_input,
                           .summary = "unused elements",
                           .help = "Unused element.\\n"};
        std::vector<Command> all;
        std::size_t at = none.words.size();
        const auto add = [&](std::string_view word) {
            if (at == none.words.size()) {
                all.push_back(none);
                at = 0;
            }
            all.back().words[at++] = word;
        };
        for (auto* const word_of : {element_word, print_element_word})
            for (const ElementRow& row : element_rows())
                if (row.alias.empty()) add(word_of(row.slot));
        return all;
    }();
    return commands;
}

constexpr std::initializer_list<Family> families = {
    element_command_rows,
    unused_element_rows,
    element_alias_rows,
};

/// Words of the elements that are not built yet.
std::span<const std::string_view> planned_words() {
    static const std::vector<std::string_view> words = [] {
        std::vector<std::string_view> all;
        for (const ElementRow& row : element_rows()) {
            if (!is_planned(row)) continue;
            all.push_back(element_word(row.slot));
            all.push_back(print_element_word(row.slot));
        }
        return all;
    }();
    return words;
}

} // namespace

const CommandTable& fe_elm_cmd() {
    static const CommandTable table{.name = "fe_elm_cmd",
                                    .topic = "fe_elements",
                                    .heading = "      FINITE ELEMENTS",
                                    .families = list_of(families),
                                    .planned = planned_words()};
    return table;
}

} // namespace quelor
