#include "fem/node_records.hpp"

#include "fem/nodes.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "numeric/finite.hpp"

#include <algorithm>

namespace quelor {

ActiveNodes::ActiveNodes()
    : active_(as_span<const char>(require_array(node_active, type_character, {any_size}))) {
    const int count = std::max(get_int(num_nodes), 0);
    active_ = active_.first(std::min(active_.size(), as_size(count)));
}

bool ActiveNodes::contains(int n) const {
    return 1 <= n && n <= std::ssize(active_) && active_[nth(n)] == 'A';
}

int ActiveNodes::highest() const {
    int n = static_cast<int>(active_.size());
    while (n > 0 && !contains(n))
        --n;
    return n;
}

std::vector<NodeValues> read_node_values(std::string_view prompt, std::string_view key,
                                         std::string_view inactive) {
    const ActiveNodes active;
    std::vector<NodeValues> all;
    for (std::int64_t previous = 0;;) {
        NodeValues record;
        std::int32_t inc = 0;
        next_record(prompt);
        get_int_par("n=", record.node);
        if (record.node == 0) return all;
        get_real_par(key, record.values);
        get_int_par("inc=", inc);
        if (!all_finite(record.values)) shutdown_with(" \n\tNodal value is not a finite number\n");
        if (!active.contains(record.node)) shutdown_with(inactive);
        const std::int64_t first = previous != 0 && inc > 0 ? previous + inc : record.node;
        for (std::int64_t n = first; n < record.node; n += inc) {
            if (!active.contains(static_cast<int>(n))) shutdown_with(inactive);
            all.push_back({static_cast<int>(n), record.values});
        }
        all.push_back(record);
        previous = record.node;
    }
}

void print_node_values(std::string_view heading, std::span<const NodeValues> all, bool screen) {
    const auto put = [&](const Format& format, const FormatItems& items) {
        if (screen) write_unit(unit_screen, format, items);
        write_unit(unit_output, format, items);
    };
    put("(/, 10x, a, /, /, '  NODE', 11x, 'X', 11x, 'Y', 11x, 'Z', 10x, 'XX', 10x, 'YY', 10x, 'ZZ')",
        {heading});
    for (const NodeValues& one : all)
        put("(i6, 1p6e12.4)", {one.node, std::span<const double>(one.values)});
}

} // namespace quelor
