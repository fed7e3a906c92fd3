// State of the process. Each subject that has any keeps it in one struct of its .cpp, behind its
// functions, and gets it from here, so that tests can begin anew.
#pragma once

#include <optional>

namespace quelor {

/// For process_state: a function that reset_process_state calls.
void add_reset(void (*reset)());

/// All state as at the start of the program: what was opened is closed, what was stored is gone.
void reset_process_state();

/// The one State of the process, made at its first use.
template <class State> State& process_state() {
    static std::optional<State> state;
    static const bool begun = [] {
        state.emplace();
        add_reset([] { state.emplace(); });
        return true;
    }();
    static_cast<void>(begun);
    return *state;
}

} // namespace quelor
