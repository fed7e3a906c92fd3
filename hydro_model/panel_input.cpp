#include "hydro_model/panel_input.hpp"

#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/project.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>

namespace quelor {

namespace {

// --- records ------------------------------------------------------------------------------------

/// A record: panel e with four nodes, and the panels generated from it. A sequence is gen + 1
/// panels; there are gen_2d + 1 sequences.
struct PanelRecord {
    std::int32_t e = 0;
    std::array<std::int32_t, 4> nodes{};
    std::array<std::int32_t, 2> inc{};    // of nodes 1, 2 and of nodes 3, 4 along a sequence
    std::int32_t gen = 0;                 // further panels of a sequence
    std::array<std::int32_t, 2> inc_2d{}; // the increments from sequence to sequence
    std::int32_t gen_2d = 0;              // further sequences
    std::int32_t inc_el = 0;              // panel numbers from sequence to sequence
};

/// The next record: plain numbers, or keys; nothing at the end of the input.
std::optional<PanelRecord> next_panel_record() {
    std::array<std::int32_t, 12> v{};
    read_int_record("Enter panel data: n  nodes  inc  gen  inc_2d  gen_2d  inc_el\n", v);
    PanelRecord r;
    if (v[0] != 0) {
        r = {v[0], {v[1], v[2], v[3], v[4]}, {v[5], v[6]}, v[7], {v[8], v[9]}, v[10], v[11]};
    } else {
        get_int_par("n=", r.e);
        get_int_par("nodes=", r.nodes);
        get_int_par("inc=", r.inc);
        get_int_par("gen=", r.gen);
        get_int_par("inc_2d=", r.inc_2d);
        get_int_par("gen_2d=", r.gen_2d);
        get_int_par("inc_el=", r.inc_el);
    }
    if (r.e == 0) return std::nullopt;
    return r;
}

/// A node number on its way through a generation; beyond the range of integers it stays there, and
/// the check of the nodes finds it.
std::int32_t clamped(std::int64_t n) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(
        n, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
}

std::array<std::int32_t, 4> advanced(const std::array<std::int32_t, 4>& nodes,
                                     const std::array<std::int32_t, 2>& inc, std::int64_t steps) {
    const auto move = [&](std::int32_t n, std::int32_t by) { return clamped(n + steps * by); };
    return {move(nodes[0], inc[0]), move(nodes[1], inc[0]), move(nodes[2], inc[1]),
            nodes[3] == 0 ? 0 : move(nodes[3], inc[1])};
}

void store_record(const PanelRecord& r, Matrix<std::int32_t> el) {
    if (r.gen < 0 || r.gen_2d < 0) shutdown_with(" \n\tNumber of panels to generate is negative\n");
    const std::int64_t inc_el = r.inc_el == 0 ? std::int64_t{r.gen} + 1 : r.inc_el;
    for (std::int64_t sequence = 0; sequence <= r.gen_2d; ++sequence) {
        const std::int64_t first = r.e + sequence * inc_el;
        if (first < 1 || first + r.gen > el.cols)
            shutdown_with(" \n\tPanel out of range - PANEL\n");
        const auto nodes = advanced(r.nodes, r.inc_2d, sequence);
        for (std::int32_t k = 0; k <= r.gen; ++k)
            std::ranges::copy(advanced(nodes, r.inc, k),
                              el.col(static_cast<int>(first + k)).begin());
    }
}

// --- checks -------------------------------------------------------------------------------------

bool is_defined(std::span<const std::int32_t> nodes) {
    return std::ranges::any_of(nodes, [](std::int32_t n) { return n != 0; });
}

/// First pass: nodes 1, 2 and 3 must differ. Sets node 4 of a triangle.
bool check_unique(const PanelKind& kind, int e, std::span<std::int32_t> n) {
    const bool unique =
        n[0] != n[1] && n[0] != n[2] && n[0] != n[3] && n[1] != n[2] && n[1] != n[3];
    if (!unique)
        write_both(
            "10(/, 4x, 'Fatal error: Nodes 1, 2, and 3 of ', a, ' number', i5, ' are not unique')",
            {kind.name, e});
    if (n[3] == 0 && n[2] != 0) {
        n[3] = n[2];
        write_unit(unit_output,
                   "20(/, 4x, 'Node 4 of ', a, ' number', i5, ' is 0; set equal to node 3')",
                   {kind.name, e});
    }
    return unique;
}

/// Second pass: numbers in range, defined nodes, finite coordinates.
bool check_nodes(const PanelKind& kind, int e, std::span<const std::int32_t> nodes,
                 const NodeSet& set) {
    bool good = true;
    for (const std::int32_t n : nodes) {
        if (n < 1 || n > set.count)
            write_both("30(/, 4x, 'Nodes of ', a, ' number', i5, ' out of range')", {kind.name, e});
        else if (!set.is_active(n))
            write_both("40(/, 4x, 'One or more nodes of ', a, ' number', i5, ' undefined')",
                       {kind.name, e});
        else if (!is_finite(set.at(n)))
            write_both("50(/, 4x, 'A coordinate of ', a, ' number', i5, ' is not a finite number')",
                       {kind.name, e});
        else
            continue;
        good = false;
    }
    return good;
}

/// The table of a kind; the fatal path, after a message, when an array is absent.
ArrayRef require_panels(std::string_view array, TypeCode type, std::string_view message) {
    const ArrayRef ref = find_array(array);
    if (ref.is(type)) return ref;
    shutdown_with(message);
}

} // namespace

void quit_after_bad_input() {
    shutdown_with(" \nSave database and quit\n");
}

int read_table_size(const PanelKind& kind) {
    if (!array_exists(kind.nodes->xyz)) shutdown_with(kind.no_nodes);
    std::int32_t n = 0;
    get_int_par(" n=", n);
    if (n < 1) return print_both(" \n\tNumber of panels < 1\n"), 0;
    if (n > most_panels) return print_both(" \n\tToo many panels: n is above 10000000\n"), 0;
    return n;
}

void read_panel_records(const PanelKind& kind, int n) {
    create_int_scalar(kind.count, n);
    const auto el = create_matrix<std::int32_t>(kind.el, 4, n);
    while (const auto record = next_panel_record())
        store_record(*record, el);
}

std::vector<TablePanel> checked_panels(const PanelKind& kind) {
    const NodeSet set = open_nodes(*kind.nodes);
    if (!set) shutdown();
    const auto el = as_matrix<std::int32_t>(find_array(kind.el));
    std::vector<TablePanel> panels;
    bool good = true;
    for (int e = 1; e <= el.cols; ++e) {
        if (!is_defined(el.col(e))) continue;
        good = check_unique(kind, e, el.col(e)) && good;
        panels.push_back({e, el(3, e) == el(4, e), {}});
    }
    for (const TablePanel& panel : panels)
        good = check_nodes(kind, panel.number, el.col(panel.number), set) && good;
    if (!good) quit_after_bad_input();
    for (TablePanel& panel : panels)
        for (int i = 1; i <= 4; ++i)
            panel.nodes[nth(i)] = set.at(el(i, panel.number));
    return panels;
}

int number_panels(const PanelKind& kind, std::span<const char> codes, bool (*in_mesh)(char code)) {
    const int n = static_cast<int>(codes.size());
    std::ranges::copy(codes, create_matrix<char>(kind.code, n, 0).data);
    const auto map = create_matrix<std::int32_t>(kind.map, n, 0);
    int total = 0;
    for (int e = 1; e <= n; ++e)
        if (in_mesh(codes[nth(e)])) map(e) = ++total;
    create_int_scalar(kind.wet_count, total);
    if (total < 1) shutdown_with(" \n\tThere are no wet panels. This is not allowed.\n");
    return total;
}

void store_types(const PanelKind& kind, std::span<const TablePanel> panels) {
    const auto map = as_span<std::int32_t>(find_array(kind.map));
    const auto types = create_matrix<std::int32_t>(kind.type, get_int(kind.wet_count), 0);
    for (const TablePanel& panel : panels)
        if (const int p = map[nth(panel.number)]; p > 0) types(p) = panel.triangle ? 1 : 0;
}

void delete_panels(const PanelKind& kind) {
    for (const auto name : {kind.el, kind.type, kind.code, kind.map})
        delete_array(name);
}

void print_panels(const PanelKind& kind) {
    const std::string name = " \n\t" + std::string(kind.name);
    const auto el = as_matrix<std::int32_t>(
        require_panels(kind.el, type_integer, name + " element information not found\n"));
    const ArrayRef code_ref =
        require_panels(kind.code, type_character, name + " element wet/dry codes not found\n");
    require_panels(kind.map, type_integer, name + " element mapping not found\n");

    const bool wet_only = has_flag("-wet_only");
    const auto codes = as_span<char>(code_ref);
    const int n = std::min(el.cols, static_cast<int>(code_ref.size()));
    write_both("10(30x, ' WET/DRY', /, ' PANEL NODE1 NODE2 NODE3 NODE4  CODES')", {});
    for (int e = 1; e <= n && el.rows == 4; ++e) {
        const char code = codes[nth(e)];
        if (code == ' ' || (wet_only && code != 'W' && code != 'V')) continue;
        write_both("20(i5, 4i6, 5x, a1)",
                   {e, el(1, e), el(2, e), el(3, e), el(4, e), std::string_view(&code, 1)});
    }
}

} // namespace quelor
