// The list of what is to be reset.
#include "kernel/process_state.hpp"

#include <cstddef>
#include <vector>

namespace quelor {

static std::vector<void (*)()>& resets() {
    static std::vector<void (*)()> all;
    return all;
}

void add_reset(void (*reset)()) {
    resets().push_back(reset);
}

void reset_process_state() {
    for (std::size_t i = 0; i < resets().size(); ++i) // one reset may bring about another state
        resets()[i]();
}

} // namespace quelor
