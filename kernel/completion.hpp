// What the word under the cursor of a command line may become.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quelor {

struct Completion {
    std::string_view word;          ///< what has been typed of it
    std::vector<std::string> names; ///< what it may become, sorted
};

/// Completes the end of `line`, a command line up to the cursor: the first word, and behind `help`,
/// to a command; behind `~` and as an argument to an array; where the command takes a file, to a
/// file or a folder, which ends in "/". Names that cannot stand on a command line are left out, and
/// so are those that begin with "." or "$" until that character is typed. Comments and the keys of
/// parameters are not completed.
Completion complete(std::string_view line);

/// What all names begin with, in whole characters; empty when there are none.
std::string_view common_beginning(const std::vector<std::string>& names);

} // namespace quelor
