// Reads `.disp`, `.disp_history`, `.node_eqs`, `.bcid_print`, `.node_active`, `.#nodes`, the nodal
// constraints; writes the user's array and `<project>.dis`.
#include "fem/pdisp.hpp"

#include "fem/bcid.hpp"
#include "fem/formkm.hpp"
#include "fem/nodal_values.hpp"
#include "fem/nodes.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <string>
#include <vector>

namespace quelor {

namespace {

constexpr int unit_disp = 99;

// --- pdisp --------------------------------------------------------------------------------------

std::string default_row_format(int dofs) {
    return "(i5, 2x, 1p, " + std::to_string(dofs) + "e12.3)";
}

/// Format of a row: the user's, or the default when it does not stand in parentheses. Empty after a
/// message when it cannot write a node number and the displacements.
std::string row_format(int dofs) {
    std::string form;
    get_char_par(" form=", form, 161);
    if (!form.starts_with('(') || !form.ends_with(')')) form = default_row_format(dofs);
    const Format format = Format::from_text(form);
    std::string complaint(format.error());
    if (complaint.empty()) {
        FormatItems sample({1});
        sample.add(std::span<const double>(std::vector<double>(as_size(dofs))));
        complaint = format_write(format, sample).error;
    }
    if (complaint.empty()) return form;
    print_both(" \n\tIncorrect format in form=: " + complaint + "\n");
    return {};
}

std::string column_titles(int dofs, NodalVector kind) {
    if (dofs == 6 && kind == NodalVector::loads)
        return " NODE       X-FORCE     Y-FORCE     Z-FORCE     XX-MOM      YY-MOM      ZZ-MOM";
    if (dofs == 6)
        return " NODE        X-DISP      Y-DISP      Z-DISP      XX-ROT      YY-ROT      ZZ-ROT";
    std::string titles = " NODE  ";
    for (int dof = 1; dof <= dofs; ++dof)
        titles += "      DOF" + edit_integer(dof, 3);
    return titles;
}

/// A node and its displacements.
struct DispRow {
    std::int32_t node;
    std::vector<double> u;
};

std::vector<DispRow> printed_rows(const NodeSet& nodes, const NodalValues& values,
                                  std::span<const std::int32_t> print,
                                  std::span<const double> vector, NodeRange range) {
    std::vector<DispRow> rows;
    const int last = std::min({range.last, values.eqs.cols, static_cast<int>(print.size())});
    for (int n = range.first; n <= last; ++n) {
        if (!nodes.is_active(n) || print[nth(n)] == 0) continue;
        rows.push_back({n, {}});
        for (int dof = 1; dof <= values.dofs(); ++dof)
            rows.back().u.push_back(values.at(vector, dof, n));
    }
    return rows;
}

constexpr Format disp_heading = "5(/,34x, 'NODAL DISPLACEMENTS', /)";

void print_rows_on(int unit, const Format& heading, const std::string& titles,
                   std::span<const DispRow> rows, const Format& format) {
    write_unit(unit, heading, {});
    write_unit(unit, "10(a, /)", {titles});
    for (const DispRow& row : rows) {
        FormatItems items({row.node});
        items.add(std::span<const double>(row.u));
        write_unit(unit, format, items);
    }
}

/// The stream file: node number and displacements of each row, nothing else.
void write_disp_file(std::span<const DispRow> rows, bool append) {
    const int status = append
                           ? fortopen_ext_position(unit_disp, ".dis", "UNKNOWN", "BINARY", "APPEND")
                           : fortopen_ext(unit_disp, ".dis", "REPLACE", "BINARY");
    if (status != 0) return;
    for (const DispRow& row : rows) {
        stream_write(unit_disp, std::span(&row.node, 1));
        stream_write(unit_disp, std::span(row.u));
    }
    close_unit(unit_disp);
}

void cmd_pdisp(std::string_view) {
    const ArrayRef print = find_array(bcid_print);
    if (!print.is(type_integer)) return print_both(" \n\tArray .bcid_print not found\n");
    auto values = open_nodal_values();
    if (!values) return;
    const ArrayRef u = find_array(disp);
    if (!u.is(type_real)) return not_found(disp);
    const NodeSet nodes = open_nodes(fe_nodes);
    if (!nodes || !values->fit(u.rows())) return;
    const NodeRange range = read_node_range(nodes.count);
    if (range.first > nodes.count) return;
    const std::string form = row_format(values->dofs());
    if (form.empty()) return;

    const Format format = Format::from_text(form);
    const auto rows = printed_rows(nodes, *values, as_span<const std::int32_t>(print),
                                   as_matrix<const double>(u).col(1), range);
    const std::string titles = column_titles(values->dofs(), NodalVector::displacements);
    if (has_flag(" -screen")) print_rows_on(unit_screen, disp_heading, titles, rows, format);
    print_rows_on(unit_output, disp_heading, titles, rows, format);
    if (has_flag(" -file")) write_disp_file(rows, has_flag(" -append"));
}

// --- extraction ---------------------------------------------------------------------------------

void cmd_nodal_disp(std::string_view) {
    const std::string target(get_arg(1));
    if (is_blank(target)) return print_both(" \n\tOne argument required\n");
    auto values = open_nodal_values();
    if (!values) return;
    const ArrayRef u = find_array(disp);
    if (!u.is(type_real)) return print_both(" \n\tArray .disp not found\n");
    const NodeSet nodes = open_nodes(fe_nodes);
    if (!nodes || !values->fit(u.rows())) return;

    const int count = std::min(nodes.count, values->eqs.cols);
    std::array<std::int32_t, 2> range{1, count};
    get_int_par(" nodes=", range);
    std::vector<std::int32_t> listed;
    for (int n = std::max(range[0], 1); n <= std::min(range[1], count); ++n)
        if (nodes.is_active(n)) listed.push_back(n);
    if (listed.empty()) return print_both(" \n\tNo nodes in the range\n");

    const int shift = has_flag(" -node#") ? 1 : 0;
    Result result(target, "$nodal_disp");
    const auto table = result.matrix<double>(static_cast<int>(listed.size()), 6 + shift);
    const auto vector = as_matrix<const double>(u).col(1);
    int row = 0;
    for (const std::int32_t n : listed) {
        ++row;
        if (shift != 0) table(row, 1) = n;
        int column = shift;
        for (const double v : values->six(vector, n))
            table(row, ++column) = v;
    }
    result.place();
}

// --- histories ----------------------------------------------------------------------------------

/// The node of n=; 0 after a message when it does not exist.
int history_node(const NodalValues& values) {
    std::int32_t n = 0;
    get_int_par(" n=", n);
    return node_in_range(n, values.eqs.cols) ? n : 0;
}

void cmd_pndisp(std::string_view) {
    auto values = open_nodal_values();
    if (!values) return;
    const ArrayRef ref = find_array(disp_history);
    if (!ref.is(type_real)) return not_found(disp_history);
    const auto history = as_matrix<const double>(ref);
    const int n = history_node(*values);
    if (n == 0 || !values->fit(history.rows - 2)) return;

    write_both("5(//,5x, 'DISPLACEMENTS FOR NODE ', i5)", {n});
    write_both(
        "10(' INCR STEP       X-DISP     Y-DISP     Z-DISP',            '     XX-ROT     YY-ROT     ZZ-ROT',/)",
        {});
    for (int j = 1; j <= history.cols; ++j) {
        const std::int32_t increment = nearest_int(history(1, j));
        const std::int32_t step = nearest_int(history(2, j));
        const auto six = values->six(history.col(j).subspan(2), n);
        const std::span<const double> u(six);
        if (j > 1 && increment == nearest_int(history(1, j - 1)))
            write_both("40(5x, i5, 2x, 1p6e11.3)", {step, u});
        else
            write_both("30(2i5, 2x, 1p6e11.3)", {increment, step, u});
    }
}

void cmd_pndisp_th(std::string_view) {
    const std::string disp_name(get_arg(1));
    const std::string time_name(get_arg(2));
    auto values = open_nodal_values();
    if (!values) return;
    const ArrayRef u = find_array_2d(disp_name);
    const ArrayRef t = find_array_2d(time_name);
    if (!u.is(type_real)) return not_found(disp_name);
    if (!t.is(type_real)) return not_found(time_name);
    if (t.size() != u.cols())
        return print_both("\n\tDimensions of displacement and time arrays are not consistent\n");
    const int n = history_node(*values);
    if (n == 0 || !values->fit(u.rows())) return;

    const auto history = as_matrix<const double>(u);
    const auto times = as_span<const double>(t);
    write_both("5(//,5x, 'TIME HISTORY FOR NODE ', i5,/)", {n});
    write_both(
        "('       TIME       X-TRAN     Y-TRAN     Z-TRAN     XX-ROT     YY-ROT     ZZ-ROT')", {});
    for (int j = 1; j <= history.cols; ++j) {
        const auto six = values->six(history.col(j), n);
        write_both("40(1pe11.3, 2x, 6e11.3)", {times[nth(j)], std::span<const double>(six)});
    }
}

// --- rows ---------------------------------------------------------------------------------------

constexpr Command rows[] = {
    {.words = {"pdisp"},
     .run = cmd_pdisp,
     .summary = "print nodal displacements",
     .help =
         "Command Syntax\n\tpdisp  [nodes=first,last]  [-screen]  [form=format]  [-file]  "
         "[-append]\n\n"
         "Prints the displacements of the first load case to the output file, for the nodes whose "
         "print code (bcid) is not 0.\n\n"
         "nodes\n\tRange of node numbers. Default is all nodes.\n\n"
         "-screen\n\tPrint on the screen as well.\n\n"
         "form\n\tFormat of a row, for the node number and one value a degree of freedom: in "
         "parentheses, without blanks, at most 160 characters. Default is (i5,2x,1p,6e12.3) with 6 "
         "degrees of freedom a node; a text without its parentheses is ignored.\n\n"
         "-file\n\tWrite the binary file with extension dis too: for each row the node number, a "
         "4-byte integer, and the displacements, 8-byte reals, with nothing before or between.\n\n"
         "-append\n\tAdd to that file. The default is to begin it anew.\n\n"
         "Example:\n\tpdisp nodes=1,10 form=(i5,6f9.3)\n\n"
         "See Also\n\tnodal_disp\n\tpndisp\n\tlsolve\n\tbcid\n"},
    {.words = {"nodal_disp"},
     .run = cmd_nodal_disp,
     .summary = "matrix of nodal displacements",
     .help =
         "Command Syntax\n\tnodal_disp  arg  [nodes=first,last]  [-node#]\n\n"
         "Puts the displacements of the nodes, first load case, into a matrix.\n\n"
         "arg\n\tName of the matrix: a row for each defined node of the range, with the first six "
         "degrees of freedom.\n\n"
         "nodes\n\tRange of node numbers. Default is all nodes. An empty range makes no matrix.\n\n"
         "-node#\n\tThe first column is the node number, and the displacements follow it.\n\n"
         "Example:\n\tnodal_disp d nodes=1,10 -node#\n\tprint d\n\n"
         "Array created: arg(nodes,6), or arg(nodes,7) with -node#, real.\n\n"
         "See Also\n\tpdisp\n\tlsolve\n"},
    {.words = {"pndisp"},
     .run = cmd_pndisp,
     .summary = "print displacements of a node by load steps",
     .help =
         "Command Syntax\n\tpndisp  n=?\n\n"
         "Prints the displacements of one node at the converged steps of a nonlinear solution, from "
         "the array .disp_history.\n\n"
         "n\n\tNode number.\n\n"
         "Example (after nsolve):\n\tpndisp n=3\n\n"
         "See Also\n\tnsolve\n\tpdisp\n"},
    {.words = {"pndisp_th"},
     .run = cmd_pndisp_th,
     .summary = "print the time history of a node",
     .help = "Command Syntax\n\tpndisp_th  n=?  arg1  arg2\n\n"
             "Prints the time history of the displacements of one node.\n\n"
             "n\n\tNode number.\n\n"
             "arg1\n\tMatrix of displacements, a column for each time, as .nodal_th_disp.\n\n"
             "arg2\n\tVector of the times, as .nodal_times.\n\n"
             "Example (after direct_th):\n\tpndisp_th n=3 .nodal_th_disp .nodal_times\n\n"
             "See Also\n\tdirect_th\n\tpdisp\n"},
};

} // namespace

void print_nodal_vector(const Format& heading, NodalVector kind, std::span<const double> vector) {
    const ArrayRef print = find_array(bcid_print);
    if (!print.is(type_integer)) return print_both(" \n\tArray .bcid_print not found\n");
    auto values = open_nodal_values();
    const NodeSet nodes = open_nodes(fe_nodes);
    if (!values || !nodes || !values->fit(static_cast<int>(vector.size()))) return;
    const std::string form = default_row_format(values->dofs());
    const auto lines =
        printed_rows(nodes, *values, as_span<const std::int32_t>(print), vector, {1, nodes.count});
    print_rows_on(unit_output, heading, column_titles(values->dofs(), kind), lines,
                  Format::from_text(form));
}

std::span<const Command> pdisp_rows() {
    return rows;
}

} // namespace quelor
