// The alias table, made from the element table.

#include "kernel/alias.hpp"

#include "kernel/fortfile.hpp"

#include <algorithm>
#include <string>

namespace quelor {

namespace {

struct Alias {
    std::string user, internal; // the user's name is empty for an unused slot
};

using AliasTable = std::array<Alias, std::size_t{2} * element_slots>;

/// Rows 1 to 40 are the element commands, rows 41 to 80 their print commands.
const AliasTable& alias_table() {
    static const AliasTable table = [] {
        AliasTable rows;
        for (std::size_t i = 0; i < element_slots; ++i) {
            const std::string number{static_cast<char>('0' + (i + 1) / 10),
                                     static_cast<char>('0' + (i + 1) % 10)};
            const std::string name(element_aliases()[i]);
            rows[i] = {.user = name, .internal = "elem" + number};
            rows[element_slots + i] = {.user = name.empty() ? "" : "p" + name,
                                       .internal = "pelem" + number};
        }
        return rows;
    }();
    return table;
}

/// Text of a 32-character field.
std::string field(std::string_view text) {
    std::string padded(text);
    padded.resize(32, ' ');
    return padded;
}

void cmd_palias(std::string_view) {
    write_both("10('Command          Alias')");
    for (const auto& [user, internal] : alias_table()) {
        if (!user.empty()) write_both("20(3x, a, 1x, a)", {field(internal), field(user)});
    }
    write_both("(a)", {""});
}

void cmd_elem_alias(std::string_view) {
    write_both("10('    Actual',/,            ' Element Name    Alias')");
    for (const auto& [user, internal] : std::span(alias_table()).first(element_slots)) {
        if (!user.empty()) write_both("30(5x, a, 6x, a)", {internal, field(user)});
    }
    write_both("(a)", {""});
}

constexpr Command palias_row[] = {
    {.words = {"palias"},
     .run = cmd_palias,
     .summary = "prints the aliases of commands",
     .help = "Command Syntax\n\tpalias\n\n"
             "Prints the commands that have an alias, and their aliases.\n\n"
             "Example\n\tpalias\n\n"
             "See Also\n\telem_alias\n"},
};

constexpr Command elem_alias_row[] = {
    {.words = {"elem_alias"},
     .run = cmd_elem_alias,
     .summary = "prints the element commands and their aliases",
     .help = "Command Syntax\n\telem_alias\n\n"
             "Prints the element commands elem01 to elem40 that are in use, and the aliases under "
             "which they are known. Either name can be given as the command.\n\n"
             "Example\n\telem_alias\n\n"
             "See Also\n\tpalias\n"},
};

} // namespace

std::string_view alias_to_internal(std::string_view word) {
    if (word.empty()) return word;
    const auto row = std::ranges::find(alias_table(), word, &Alias::user);
    return row == alias_table().end() ? word : std::string_view(row->internal);
}

std::string_view alias_to_user(std::string_view word) {
    const auto row = std::ranges::find(alias_table(), word, &Alias::internal);
    return row == alias_table().end() || row->user.empty() ? word : std::string_view(row->user);
}

std::string_view element_word(int slot) {
    return alias_table()[as_size(slot) - 1].internal;
}

std::string_view print_element_word(int slot) {
    return alias_table()[as_size(slot) + element_slots - 1].internal;
}

std::span<const Command> alias_rows() {
    return palias_row;
}
std::span<const Command> element_alias_rows() {
    return elem_alias_row;
}

} // namespace quelor
