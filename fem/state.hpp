// State and response of the elements. State is what an element carries from step to step: a trial
// pass finds it for displacements that may still change, a commit pass makes it final. Response is
// what follows from the state and nothing depends on.
#pragma once

#include "kernel/command.hpp"

namespace quelor {

enum class StatePass {
    both,  ///< the command: trial and commit
    trial, ///< forces of `.disp` + `$ddisp` into `.f_internal`, state into the `$` arrays
    commit ///< the `$` arrays take the place of the committed ones
};
/// The passes over all elements. `.f_internal` is made when absent, and by `both` anew; the trial
/// pass starts from zero. Without equations a message, and but for `both` the fatal path.
void element_state(StatePass pass);

/// Prints the committed state, or the trial state, of all elements.
enum class StateKind { committed, trial };
void print_element_state(StateKind kind);

std::span<const Command> state_rows();

} // namespace quelor
