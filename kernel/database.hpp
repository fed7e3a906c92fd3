// The commands that act on the database as a whole.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

/// `ls`, `ll`, `memory`, `rm`, `rm*`, `mv`, `readdb`, `save`, `clear`
std::span<const Command> database_rows();

} // namespace quelor
