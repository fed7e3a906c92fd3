// The loop at the heart of the program: read a record, take its word, run the command.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

/// Runs the word `first`, then commands until one of them ends the program.
[[noreturn]] void main_loop(std::string_view first);
/// A command line inside a long-running command; returns at the word "exit". The commands of
/// `fem_cmd` are not offered.
void nested_command_line();
/// Offers a word, aliases translated, to the tables of the chain; says so when nobody claims it.
void dispatch(std::span<const CommandTable* const> chain, std::string_view word);

} // namespace quelor
