// Nodal loads, imposed displacements and nodal pressures: input, printing, load patterns. Reads
// `.#nodes`, `.node_active`, `.#dofs_per_node`, `.bcid`, `.xyz`, `.node_eqs`; writes the arrays of
// loads.hpp and `.load_pat`.
#include "fem/loads.hpp"

#include "fem/assembly.hpp"
#include "fem/formkm.hpp"
#include "fem/node_records.hpp"
#include "fem/nodes.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "numeric/finite.hpp"

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace quelor {

namespace {

constexpr int most_patterns = 10000; // more is a slip of the pen

/// Makes `name` of columns laid end to end.
void store_columns(std::string_view name, int rows, std::span<const double> columns) {
    const int count = static_cast<int>(columns.size()) / rows;
    std::ranges::copy(columns, create_matrix<double>(name, rows, count).data);
}

// --- nodef

/// One record, by numbers or by keys, into a column of node, pattern, components; false at the end.
bool read_load(std::span<double> column) {
    read_real_record("Enter nodal load data: n  p  f\n", column);
    if (column[0] != 0) return true;
    std::int32_t node = 0;
    std::int32_t pattern = 1;
    std::ranges::fill(column, 0.0);
    get_int_par("n=", node);
    get_int_par("p=", pattern);
    get_real_par("f=", column.subspan(2));
    column[0] = node;
    column[1] = pattern;
    return node != 0;
}

void cmd_nodef(std::string_view) {
    std::int32_t dofs = 6;
    get_int_par("#=", dofs);
    if (array_exists(num_dofs_per_node) && get_int(num_dofs_per_node) >= 6)
        dofs = get_int(num_dofs_per_node);
    dofs = std::clamp(dofs, 6, 1000);
    delete_array(load_pat);
    delete_array(disp_inp);

    std::vector<double> columns;
    std::vector<double> column(as_size(dofs) + 2);
    while (read_load(column)) {
        const int pattern = nearest_int(column[1]);
        if (pattern < 1 || pattern > most_patterns)
            shutdown_with(" \n\tPattern number out of range\n");
        if (!all_finite(column)) shutdown_with(" \n\tLoad is not a finite number\n");
        columns.insert(columns.end(), column.begin(), column.end());
    }
    if (columns.empty()) columns.resize(column.size());
    store_columns(load_inp, dofs + 2, columns);
}

/// A heading line of the degrees of freedom.
void write_dof_heading(Format start, std::span<const std::string_view> six, int dofs) {
    write_both(start);
    for (int d = 1; d <= dofs; ++d) {
        if (dofs == 6)
            write_both("(a12, $)", {six[nth(d)]});
        else
            write_both("('      DOF', i3, $)", {d});
    }
    write_both("()");
}

constexpr std::string_view force_names[] = {"X-FORCE",  "Y-FORCE",  "Z-FORCE",
                                            "X-MOMENT", "Y-MOMENT", "Z-MOMENT"};

void cmd_pnodef(std::string_view) {
    const ArrayRef ref = find_array(load_inp);
    if (!ref.is(type_real) || ref.rows() < 3) return print_both(" \n\tLoads not found\n");
    const auto input = as_matrix<const double>(ref);
    write_both("(/, 10x, 'I N P U T   N O D A L   L O A D S', /)");
    write_dof_heading("(' NODE  PATTERN', $)", force_names, input.rows - 2);
    for (int k = 1; k <= input.cols; ++k) {
        FormatItems items;
        items.add(nearest_int(input(1, k))).add(nearest_int(input(2, k)));
        items.add(std::span<const double>(input.col(k).subspan(2)));
        if (nearest_int(input(1, k)) != 0) write_both("(i5, i9, 1p, 1000e12.3)", items);
    }
}

// --- load patterns

/// Number of patterns in the input, 1 when it has no loads.
int count_patterns(Matrix<const double> input) {
    int patterns = 1;
    for (int k = 1; k <= input.cols; ++k)
        patterns = std::max(patterns, nearest_int(input(2, k)));
    if (patterns > most_patterns)
        shutdown_with(" \n\tPattern number out of range in .load_inp - see nodef command\n");
    return patterns;
}

} // namespace

void form_nodal_loads() {
    const Equations equations = open_equations();
    if (!array_exists(load_inp)) {
        create_matrix<double>(load_pat, equations.count, 1);
        return;
    }
    const auto input = require_matrix<double>(load_inp);
    if (input.rows < 3) shutdown_with(" \n\tArray .load_inp is of the wrong type or size\n");
    const int patterns = count_patterns(input);
    create_matrix<double>(load_pat, equations.count, patterns);
    GlobalVector loads = open_load_patterns(equations);
    const int highest = std::min(get_int(num_nodes), equations.of_node.cols);
    const auto dofs = as_size(std::min(input.rows - 2, equations.of_node.rows));
    for (int k = 1; k <= input.cols; ++k) {
        const int node = nearest_int(input(1, k));
        const int pattern = nearest_int(input(2, k));
        if (node == 0 && pattern == 0) continue; // stands for an input without records
        if (node < 1 || node > highest)
            shutdown_with(" \n\tNode number out of range in .load_inp - see nodef command\n");
        if (pattern < 1)
            shutdown_with(" \n\tPattern number out of range in .load_inp - see nodef command\n");
        add_element_load(loads, pattern, equations.of_node.col(node).first(dofs),
                         input.col(k).subspan(2, dofs));
    }
}

namespace {

void cmd_load_summary(std::string_view) {
    const ArrayRef ref = find_array(load_pat);
    if (!ref.is(type_real)) return not_found(load_pat);
    if (!array_exists(node_eqs)) return not_found(node_eqs);
    const Equations equations = open_equations();
    const GlobalVector loads = open_load_patterns(equations);
    for (int p = 1; p <= loads.values.cols; ++p) {
        std::array<double, 6> sums{};
        std::vector<char> counted(as_size(equations.count)); // nodes may share one
        for (int node = 1; node <= equations.of_node.cols; ++node)
            for (int d = 1; d <= 6; ++d) {
                const std::int32_t e = equations.of_node(d, node);
                if (e > equations.count) shutdown_with(" \n\tEquation number not possible\n");
                if (e <= 0 || std::exchange(counted[nth(e)], 1)) continue;
                sums[nth(d)] += loads.values(e, p);
            }
        write_both("10(/, 5x, 'Summary for Load Pattern', i5, /)", {p});
        write_dof_heading("(5x, $)", force_names, 6);
        write_both("(5x, 1p6e12.3)", {std::span<const double>(sums)});
    }
}

// --- imposed displacements

/// Whether the degree of freedom has, or will have, an equation; true before `bcid`.
bool has_equation(int node, int dof) {
    const ArrayRef ref = find_array(bcid);
    if (!ref.is(type_integer) || ref.cols() < node || ref.rows() < dof) return true;
    return as_matrix<const std::int32_t>(ref)(dof, node) <= 0;
}

/// The columns of `.disp_inp`, in the order in which the degrees of freedom were first named.
struct ImposedInput {
    std::size_t rows;
    std::vector<double> columns;
    std::map<std::pair<int, int>, std::size_t> place; ///< of each degree of freedom in `columns`

    void set(int node, int dof, std::span<const double> values) {
        const auto [at, added] = place.try_emplace({node, dof}, columns.size());
        if (added) columns.resize(columns.size() + rows);
        const auto column = std::span(columns).subspan(at->second, rows);
        column[0] = node;
        column[1] = dof;
        std::ranges::copy(values, column.begin() + 2);
    }
};

/// One record; false at the end.
bool read_imposed(ImposedInput& imposed, const ActiveNodes& active) {
    std::int32_t node = 0, dof = 0;
    next_record("Enter nodal displacements: n=  dof=  disp=\n");
    get_int_par("n=", node);
    if (node == 0) return false;
    get_int_par("dof=", dof);
    std::vector<double> values(imposed.rows - 2);
    get_real_par("disp=", values);
    if (!active.contains(node))
        shutdown_with(" \n\tIllegal assignment of displacement to inactive node\n");
    if (!all_finite(values)) shutdown_with(" \n\tDisplacement is not a finite number\n");
    if (dof < 1 || dof > 6)
        print_both(" \n\tIllegal DOF; data ignored\n");
    else if (!has_equation(node, dof))
        print_both(
            " \n\tDOF is fixed or constrained, so no displacement can be imposed on it; data "
            "ignored\n");
    else
        imposed.set(node, dof, values);
    return true;
}

void cmd_imposed_displ(std::string_view) {
    const ArrayRef loads = find_array(load_inp);
    if (!loads.is(type_real) || loads.rows() < 3)
        return print_both(" \n\tLoad patterns not defined; nodef must come first\n");
    if (!array_exists(node_active)) return not_found(node_active);
    const int rows = count_patterns(as_matrix<const double>(loads)) + 2;
    const ActiveNodes active;
    ImposedInput imposed{as_size(rows), {}, {}};
    while (read_imposed(imposed, active)) {
    }
    delete_array(disp_inp);
    if (!imposed.columns.empty()) store_columns(disp_inp, rows, imposed.columns);
}

void cmd_pimposed_displ(std::string_view) {
    const ArrayRef ref = find_array(disp_inp);
    if (!ref.is(type_real) || ref.rows() < 3)
        return print_both(" \n\tImposed displacements not defined\n");
    const auto input = as_matrix<const double>(ref);
    write_both("(/, 10x, 'I M P O S E D   D I S P L A C E M E N T S', /)");
    write_both("(' NODE  DOF  DISPLACEMENT IN EACH PATTERN')");
    for (int k = 1; k <= input.cols; ++k) {
        FormatItems items;
        items.add(nearest_int(input(1, k))).add(nearest_int(input(2, k)));
        items.add(std::span<const double>(input.col(k).subspan(2)));
        write_both("(i5, i5, 1p6e12.3, :, /, (10x, 1p6e12.3))", items);
    }
}

// --- nodal pressures

struct PressureRecord {
    std::int32_t first = 0, last = 0, inc = 1, pattern = 0;
    double pressure = 0, density = 0, z0 = 0;
    bool hydro = false, no_negative = false;

    double at(double z) const {
        if (!hydro) return pressure;
        const double p = -density * (z - z0);
        return no_negative && p < 0 ? 0 : p;
    }
};

/// The next record; false at the end. Nodes out of 1..highest give the fatal path.
bool read_pressure(PressureRecord& r, int highest) {
    r = {};
    std::string all;
    std::array<std::int32_t, 3> nodes{};
    next_record("Enter line of data\n");
    if (record_text().empty()) return false;
    get_char_par("n=", all, 33);
    get_int_par("n=", nodes);
    get_int_par("pat=", r.pattern);
    get_real_par(" p=", r.pressure);
    get_real_par("density=", r.density);
    get_real_par("z=", r.z0);
    r.hydro = has_flag(" -hydro");
    r.no_negative = has_flag(" -no_negative");
    r.first = nodes[0];
    r.last = nodes[1] == 0 ? nodes[0] : nodes[1];
    r.inc = nodes[2] == 0 ? 1 : nodes[2];
    if (all == "all") r.first = 1, r.last = highest, r.inc = 1;
    if (r.first < 1 || r.last > highest || r.inc < 1)
        shutdown_with(" \n\tNode number out of range\n");
    if (r.pattern < 1 || r.pattern > most_patterns)
        shutdown_with(" \n\tPattern number out of range\n");
    if (!all_finite(std::array{r.pressure, r.density, r.z0}))
        shutdown_with(" \n\tPressure is not a finite number\n");
    return true;
}

void cmd_nodal_pressure(std::string_view) {
    if (!array_exists(node_active)) return not_found(node_active);
    const ActiveNodes active;
    const int highest = active.highest();
    if (highest < 1) return print_both(" \n\tNumber of nodes < 1\n");
    const auto x = require_matrix<double>(xyz, 3);
    if (x.cols < highest) return print_both(" \n\tNodal arrays do not agree in size\n");

    std::vector<std::int32_t> patterns;
    std::vector<std::vector<double>> columns;
    for (PressureRecord r; read_pressure(r, highest);) {
        const auto at = std::ranges::find(patterns, r.pattern) - patterns.begin();
        if (at == std::ssize(patterns)) {
            patterns.push_back(r.pattern);
            columns.emplace_back(as_size(highest));
        }
        auto& column = columns[as_size(at)];
        for (std::int64_t n = r.first; n <= r.last; n += r.inc)
            if (const int node = static_cast<int>(n); active.contains(node))
                column[nth(node)] = r.at(x(3, node));
    }
    delete_array(nodal_pressure);
    delete_array(nodal_pressure_pat);
    if (patterns.empty()) return;
    const int count = static_cast<int>(patterns.size());
    const auto out = create_matrix<double>(nodal_pressure, highest, count);
    for (int c = 1; c <= count; ++c)
        std::ranges::copy(columns[nth(c)], out.col(c).begin());
    std::ranges::copy(patterns, create_matrix<std::int32_t>(nodal_pressure_pat, count, 0).data);
}

constexpr Command rows[] = {
    {.words = {"nodef"},
     .run = cmd_nodef,
     .summary = "input of nodal loads",
     .help =
         "Command Syntax\n\tnodef  [#=?]\n\t   n=node_no  p=pat  f=?,?,?...\n\t   (blank line)\n\n"
         "Loads at nodes, in any number of load patterns. The records may also be plain numbers: node, "
         "pattern, components.\n\n"
         "#\n\tComponents of a load. Default is the number of degrees of freedom of bcid, which wins "
         "over #, and 6 when there is none.\n\n"
         "n\n\tNode number. Loads on one node and pattern add up; a load on a fixed degree of freedom "
         "is dropped, one on a constrained degree of freedom goes to those it depends on.\n\n"
         "p\n\tPattern number, 1 or more; the largest one is the number of patterns. Default is 1. A "
         "number out of range ends the program; the database is saved first.\n\n"
         "f\n\tForces along X, Y, Z, then moments about them. Defaults are 0.\n\n"
         "Without records there is one pattern, all zeros.\n\n"
         "Example (a force along -Z on node 2):\n\tnodef\n\tn=2 p=1 f=0,0,-10.0\n\t(blank line)\n\n"
         "Array created: .load_inp, one column a record. The arrays .load_pat and .disp_inp are "
         "deleted; form_k makes .load_pat.\n\n"
         "See Also\n\tpnodef\n\timposed_displ\n\tload_summary\n\tform_k\n"},
    {.words = {"pnodef"},
     .run = cmd_pnodef,
     .summary = "print nodal loads",
     .help = "Command Syntax\n\tpnodef\n\nPrints the loads given by nodef.\n\n"
             "Example:\n\tpnodef\n\nSee Also\n\tnodef\n"},
    {.words = {"load_summary"},
     .run = cmd_load_summary,
     .summary = "sums of the load patterns",
     .help =
         "Command Syntax\n\tload_summary\n\n"
         "Prints for each load pattern the sum of its forces and moments by direction, over the "
         "equations of all nodes. Moments are plain sums, without the moments of the forces. Imposed "
         "displacements are not counted.\n\n"
         "Must follow form_k.\n\n"
         "Example:\n\tload_summary\n\nSee Also\n\tnodef\n\tform_k\n"},
    {.words = {"imposed_displ"},
     .run = cmd_imposed_displ,
     .summary = "input of imposed displacements",
     .help =
         "Command Syntax\n\timposed_displ\n\t   n=node_no  dof=dof  disp=p1,p2,...\n\t   (blank line)"
         "\n\n"
         "Displacements imposed on degrees of freedom, which must be free in bcid.\n\n"
         "n\n\tNode number. A node that is not active ends the program; the database is saved "
         "first.\n\n"
         "dof\n\tDegree of freedom, 1 to 6. A record with another one is ignored, as is one for a "
         "degree of freedom that is fixed or constrained.\n\n"
         "disp\n\tA value for each load pattern; 0 where none is given. The degree of freedom is held "
         "in every pattern. A later record for it replaces the earlier one.\n\n"
         "Must follow nodef, which defines the patterns.\n\n"
         "Example (a settlement of node 3 in pattern 1):\n\timposed_displ\n\tn=3 dof=3 disp=-0.01\n\t"
         "(blank line)\n\n"
         "Array created: .disp_inp, one column an imposed displacement.\n\n"
         "See Also\n\tpimposed_displ\n\tnodef\n\tlsolve\n"},
    {.words = {"pimposed_displ"},
     .run = cmd_pimposed_displ,
     .summary = "print imposed displacements",
     .help =
         "Command Syntax\n\tpimposed_displ\n\nPrints the displacements given by imposed_displ.\n\n"
         "Example:\n\tpimposed_displ\n\nSee Also\n\timposed_displ\n"},
    {.words = {"nodal_pressure"},
     .run = cmd_nodal_pressure,
     .summary = "input of pressures at nodes",
     .help =
         "Command Syntax\n\tnodal_pressure\n\t   n=first,last,incr  pat=pat  [p=pressure]  [-hydro  "
         "density=density]  [z=Z0]  [-no_negative]\n\t   (blank line)\n\n"
         "Pressures at nodes, for the elements that take them as loads.\n\n"
         "n\n\tRange of nodes, or n=all. Without last it is a single node; incr is 1 by default. A "
         "number out of range ends the program; the database is saved first.\n\n"
         "pat\n\tLoad pattern.\n\n"
         "p\n\tPressure. Default is 0.\n\n"
         "-hydro\tHydrostatic pressure -density*(z - Z0) of each node; density is the weight of a unit "
         "of volume, Z0 (default 0) the level of zero pressure.\n\n"
         "-no_negative\n\tA negative hydrostatic pressure becomes 0.\n\n"
         "Example (water of level 0 on all nodes):\n\tnodal_pressure\n\t"
         "n=all pat=1 -hydro density=10.05 -no_negative\n\t(blank line)\n\n"
         "Arrays created, replacing those of an earlier nodal_pressure: .nodal_pressure, one column "
         "for each pattern with pressures, and .nodal_pressure_pat, the pattern of each column.\n\n"
         "See Also\n\tnodef\n\tform_k\n"},
};

} // namespace

std::span<const Command> loads_rows() {
    return rows;
}

} // namespace quelor
