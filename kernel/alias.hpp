// The element commands under the names that users know: `ntruss` for `elem01`, `pntruss` for
// `pelem01`.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

inline constexpr int element_slots = 40;
/// The users' names of the element commands in slot order, empty for an unused slot; defined by the
/// element table.
std::span<const std::string_view, element_slots> element_aliases();

/// The internal word of a user's name; any other word as it is.
std::string_view alias_to_internal(std::string_view word);
/// The user's name of an internal word; any other word, or one without an alias, as it is.
std::string_view alias_to_user(std::string_view word);
/// Internal words of slot 1 to 40: "elem07", "pelem07".
std::string_view element_word(int slot);
std::string_view print_element_word(int slot);

/// `palias`
std::span<const Command> alias_rows();
/// `elem_alias`
std::span<const Command> element_alias_rows();

} // namespace quelor
