// Restraint codes and print codes of the nodes. Reads `.#nodes`, `.#nodes_tot`, `.node_active`;
// writes the arrays of bcid.hpp; deletes `.node_eqs`, `.#eqs`.
#include "fem/bcid.hpp"

#include "fem/nodes.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <string>
#include <vector>

namespace quelor {

namespace {

constexpr std::int32_t most_dofs = 1000; // more is a slip of the pen

struct Restraints {
    Matrix<std::int32_t> codes; // (dofs, nodes)
    Matrix<std::int32_t> print; // (nodes)
};

/// Arrays with the defaults of the command line in every column.
Restraints create_restraints(int total, std::int32_t dofs) {
    std::int32_t print = 1;
    get_int_par("print=", print);
    print = print != 0 ? 1 : 0;
    create_int_scalar(num_dofs_per_node, dofs);
    create_int_scalar(node_print, print);
    const Restraints r{create_matrix<std::int32_t>(bcid, dofs, total),
                       create_matrix<std::int32_t>(bcid_print, total, 0)};
    const auto defaults = r.codes.col(1);
    get_int_par("r=", defaults);
    for (int n = 2; n <= total; ++n)
        std::ranges::copy(defaults, r.codes.col(n).begin());
    std::ranges::fill(r.print.all(), print);
    return r;
}

/// Gives the column and print code of node n to the nodes between it and the previous record's.
void copy_restraints(const Restraints& r, std::int64_t previous, std::int64_t n, std::int64_t inc) {
    std::int64_t count = (n - previous) / inc;
    if (previous + count * inc == n) --count;
    const auto column = r.codes.col(static_cast<int>(n));
    for (std::int64_t k = 1; k <= count; ++k) {
        const int node = static_cast<int>(previous + k * inc);
        std::ranges::copy(column, r.codes.col(node).begin());
        r.print(node) = r.print(static_cast<int>(n));
    }
}

void cmd_bcid(std::string_view) {
    const int total = get_int(num_nodes_tot);
    const int count = get_int(num_nodes);
    if (count < 1) return print_both(" \n\tNumber of nodes < 1\n");
    if (total < count) return print_both(" \n\tNodal arrays do not agree in size\n");
    std::int32_t dofs = 6;
    get_int_par("#=", dofs);
    if (dofs > most_dofs)
        return print_both(" \n\tToo many degrees of freedom a node: # is above 1000\n");
    delete_array(node_eqs);
    delete_array(num_eqs);
    const Restraints r = create_restraints(total, std::max(dofs, 6));

    for (std::int32_t previous = 0;;) {
        std::int32_t n = 0;
        std::int32_t inc = 0;
        next_record("Enter nodal restraints: n  r  print  inc\n");
        get_int_par("n=", n);
        if (n == 0) return;
        if (n < 0 || n > count) shutdown_with(" \n\tNode number out of range\n");
        get_int_par("r=", r.codes.col(n));
        get_int_par("print=", r.print(n));
        get_int_par("inc=", inc);
        if (previous != 0 && inc != 0) copy_restraints(r, previous, n, inc);
        previous = n;
    }
}

void write_heading(int dofs) {
    write_both("10(/, '    NODE                   NODAL RESTRAINTS')", {});
    if (dofs == 6)
        return write_both("('  NUMBER       X       Y       Z      XX      YY      ZZ     PRINT')",
                          {});
    write_both("('  NUMBER', $)", {});
    for (int dof = 1; dof <= dofs; ++dof)
        write_both("('  DOF', i3, $)", {dof});
    write_both("('     PRINT')", {});
}

void cmd_pbcid(std::string_view) {
    const ArrayRef codes_ref = find_array(bcid);
    const ArrayRef print_ref = find_array(bcid_print);
    const ArrayRef active_ref = find_array(node_active);
    if (!codes_ref.is(type_integer)) return print_both(" \n\tArray .bcid not found\n");
    if (!print_ref.is(type_integer)) return print_both(" \n\tArray .bcid_print not found\n");
    if (!active_ref.is(type_character)) return print_both(" \n\tActive node array not found\n");

    const auto codes = as_matrix<std::int32_t>(codes_ref);
    const auto print = as_span<std::int32_t>(print_ref);
    const auto active = as_span<char>(active_ref);
    const auto count = std::min({get_int(num_nodes), codes.cols, static_cast<int>(print_ref.size()),
                                 static_cast<int>(active_ref.size())});
    write_heading(codes.rows);
    const std::string text = "(i6, 2x, " + std::to_string(codes.rows + 1) + "i8)";
    const Format row = Format::from_text(text);
    for (int n = 1; n <= count; ++n) {
        const auto at = nth(n);
        if (active[at] != 'A') continue;
        FormatItems items;
        items.add(n).add(std::span<const std::int32_t>(codes.col(n))).add(print[at]);
        write_both(row, items);
    }
}

constexpr Command rows[] = {
    {.words = {"bcid"},
     .run = cmd_bcid,
     .summary = "input of nodal restraints",
     .help =
         "Command Syntax\n\tbcid  [#=?]  [r=?,?,?...]  [print=?]\n\t"
         "   n=node_no  r=?,?,?...  [print=?]  [inc=inc]\n\t   (blank line)\n\n"
         "Restraint codes of the degrees of freedom of each node.\n\n"
         "#\n\tDegrees of freedom a node, 6 or more. Default is 6: translations along X, Y, Z and "
         "rotations about them.\n\n"
         "r\n\tCodes, on the command line the defaults of all nodes (0 when not given) and on a record "
         "those of its node: 0 free, 1 fixed, -m shares the equation of the same degree of freedom "
         "of node m.\n\n"
         "print\n\tPrint code of pdisp: 0 not printed, 1 printed. Default is 1, or the command line's "
         "value on a record.\n\n"
         "n\n\tNode number. A number out of range ends the program; the database is saved first. A "
         "blank line ends the input.\n\n"
         "inc\n\tNode increment of generation (default 0: none). Nodes between this record's node and "
         "the one before it take the codes of this record.\n\n"
         "Example (plane motion, node 1 fixed):\n\tbcid r=0,0,1,1,1,0\n\tn=1 r=1,1,1,1,1,1\n\t"
         "(blank line)\n\n"
         "Arrays created: .bcid(#,.#nodes_tot), .bcid_print(.#nodes_tot), .#dofs_per_node, "
         ".node_print. The arrays .node_eqs and .#eqs are deleted.\n\n"
         "See Also\n\tpbcid\n\tnodes\n\tmerge_nodes\n"},
    {.words = {"pbcid"},
     .run = cmd_pbcid,
     .summary = "print nodal restraints",
     .help = "Command Syntax\n\tpbcid\n\n"
             "Prints the restraint codes and the print code of each node.\n\n"
             "Example:\n\tpbcid\n\n"
             "See Also\n\tbcid\n\tpnodes\n"},
};

} // namespace

std::span<const Command> bcid_rows() {
    return rows;
}

} // namespace quelor
