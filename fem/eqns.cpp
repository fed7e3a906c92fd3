// Numbering of the equations, layout of the profile, ordering of the nodes. Reads `.#nodes`,
// `.node_active`, `.bcid`, `.bcid_print`, the nodal constraints; writes `.node_eqs`, `.#eqs`,
// `.kdiag_loc`, `.kstr_size`, `.node_eq_order`; deletes `.kstr`, `.mstr`; `.k_colhite` while it
// works.
#include "fem/eqns.hpp"

#include "fem/assembly.hpp"
#include "fem/elemutil.hpp"
#include "fem/formkm.hpp"
#include "fem/node_ordering.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/project.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <utility>

namespace quelor {

// --- numbering ----------------------------------------------------------------------------------

namespace {

/// What the numbering reads of the nodes: numbers 1..count are safe to use.
struct NodeCodes {
    Matrix<const std::int32_t> codes;
    std::span<const char> active;
    int count = 0;

    bool is_active(int n) const { return active[nth(n)] == 'A'; }
};

/// Nothing, after a message, when the arrays are not there; without `.bcid` the fatal path.
std::optional<NodeCodes> open_codes() {
    const int count = get_int(num_nodes);
    if (count < 1) return print_both(" \n\tNumber of nodes < 1\n"), std::nullopt;
    const ArrayRef codes = find_array(bcid);
    if (!codes.is(type_integer))
        shutdown_with(
            " \nArray .bcid not found; see command bcid - saving database and quitting\n");
    const ArrayRef active = find_array(node_active);
    if (!active.is(type_character))
        return print_both(" \n\tActive node array not found\n"), std::nullopt;
    if (codes.cols() < count || codes.rows() < 6 || active.size() < count)
        return print_both(" \n\tNodal arrays do not agree in size\n"), std::nullopt;
    return NodeCodes{as_matrix<const std::int32_t>(codes), as_span<const char>(active), count};
}

/// Node numbers in the order of numbering: `.node_eq_order`, or the natural order.
std::vector<std::int32_t> numbering_order(int count) {
    std::vector<std::int32_t> order;
    std::vector<char> listed(as_size(count));
    const ArrayRef ref = find_array(node_eq_order);
    if (!ref.is(type_integer)) {
        for (std::int32_t n = 1; n <= count; ++n)
            order.push_back(n);
        return order;
    }
    for (const std::int32_t n : as_span<const std::int32_t>(ref)) {
        if (n < 1 || n > count)
            shutdown_with(" \n\tNode out of range in .node_eq_order - see command node_order\n");
        if (std::exchange(listed[nth(n)], 1) == 0) order.push_back(n);
    }
    return order;
}

/// Numbers the free degrees of freedom; returns how many.
int number_free(const NodeCodes& nodes, Matrix<std::int32_t> eqs) {
    int counter = 0;
    for (const std::int32_t n : numbering_order(nodes.count)) {
        if (!nodes.is_active(n)) continue;
        for (int d = 1; d <= eqs.rows; ++d)
            if (nodes.codes(d, n) == 0) eqs(d, n) = ++counter;
    }
    return counter;
}

/// Gives the degrees of freedom that depend on others what stands for them.
void number_dependent(const NodeCodes& nodes, Matrix<std::int32_t> eqs) {
    std::optional<ConstraintNumbers> constraints; // only looked up where there are any
    for (int n = 1; n <= nodes.count; ++n) {
        if (!nodes.is_active(n)) continue;
        for (int d = 1; d <= eqs.rows; ++d) {
            const std::int32_t v = nodes.codes(d, n);
            if (-nodes.count <= v && v < 0) eqs(d, n) = eqs(d, -v);
            if (v != 2) continue;
            if (!constraints) constraints.emplace();
            eqs(d, n) = -constraints->find(n, d);
        }
    }
}

bool renumber() {
    const auto nodes = open_codes();
    if (!nodes) return false;
    for (const auto name : {kdiag_loc, kstr_size, kstr, mstr})
        delete_array(name);
    const auto eqs = create_matrix<std::int32_t>(node_eqs, nodes->codes.rows, nodes->codes.cols);
    const int count = number_free(*nodes, eqs);
    number_dependent(*nodes, eqs);
    create_int_scalar(num_eqs, count);
    return true;
}

} // namespace

// --- profile ------------------------------------------------------------------------------------

namespace {

/// Positions of the diagonals by the column heights; false when the profile has too many terms.
bool locate_diagonals(std::span<const std::int32_t> heights) {
    std::int64_t size = 0;
    for (const std::int32_t h : heights)
        size += h + 1;
    if (size >= std::numeric_limits<std::int32_t>::max()) return false;
    const auto loc =
        create_matrix<std::int32_t>(kdiag_loc, static_cast<int>(heights.size()) + 1, 0);
    loc(1) = 1;
    for (int j = 1; j < loc.rows; ++j)
        loc(j + 1) = loc(j) + heights[nth(j)] + 1;
    create_int_scalar(kstr_size, static_cast<std::int32_t>(size));
    return true;
}

void report_profile(std::span<const std::int32_t> heights) {
    const int n = static_cast<int>(heights.size());
    const std::int32_t size = get_int(kstr_size);
    const auto highest = std::ranges::max_element(heights);
    const std::int32_t whole = size / n;
    const auto average = static_cast<float>(whole); // carried in single precision
    write_both(
        "20(/,5x, 'Number of equations      =', i10, /,              5x, 'Size of stiffness matrix =', i10, /,              5x, 'Maximum column height    =', i10, /,              5x, '          at equation    =', i10, /,              5x, 'Average column height    =', i10, /)",
        {n, size, *highest + 1, static_cast<std::int32_t>(highest - heights.begin()) + 1,
         nearest_int(static_cast<double>(average))});
}

bool form_profile(int count) {
    const Temporary<std::int32_t> heights(k_colhite, count, 0);
    elem_call({1, 0, 0}, 0);
    if (!locate_diagonals(heights.view.all()))
        return print_both(" \n\tSize of stiffness matrix is above 2147483646\n"), false;
    report_profile(heights.view.all());
    return true;
}

} // namespace

bool number_equations(bool anew) {
    if (anew) {
        delete_array(node_eqs);
        delete_array(num_eqs);
    }
    if (!array_exists(node_eqs) && !renumber()) return false;
    const int count = get_int(num_eqs);
    if (count < 1) return print_both(" \n\tNumber of equations (.#eqs) < 1\n"), false;
    return array_exists(kdiag_loc) || form_profile(count);
}

static void cmd_num_eqs(std::string_view) {
    number_equations(has_flag(" -#eqs"));
}

[[noreturn]] static void numbers_missing(std::string_view name) {
    not_found(name);
    print_both(" \n\tProgram must quit");
    exit_unsaved(false);
}

void check_numbering() {
    const ArrayRef eqs_ref = find_array(node_eqs);
    if (!eqs_ref.is(type_integer)) numbers_missing(node_eqs);
    if (!find_array(bcid).is(type_integer)) numbers_missing(bcid);
    const auto nodes = open_codes();
    if (!nodes || eqs_ref.rows() < nodes->codes.rows || eqs_ref.cols() < nodes->count)
        shutdown_with(" \n\tNodal arrays do not agree in size\n");
    const auto eqs = as_matrix<const std::int32_t>(eqs_ref);
    for (int n = 1; n <= nodes->count; ++n) {
        if (!nodes->is_active(n)) continue;
        for (int d = 1; d <= nodes->codes.rows; ++d) {
            if (nodes->codes(d, n) != 0 || eqs(d, n) >= 1) continue;
            write_both(
                "10(/, '    Equation numbering failed a consistency check', /  '    DOFs for node ', i0, ' have not been numbered', /,  '    If the command node_order was used, there are two likely causes:', /,  '        1. Command node_order was out of sequence, or', /,  '        2. Not all nodes are connected to each other', /,  '    See the help on command node_order')",
                {n});
            exit_unsaved(false);
        }
    }
}

// --- peqs ---------------------------------------------------------------------------------------

namespace {

void write_heading(int dofs) {
    write_both("10(/, '   NODE           EQUATION NUMBERS')");
    if (dofs == 6)
        return write_both("(' NUMBER      X      Y      Z     XX     YY     ZZ  PRINT')");
    write_both("(' NUMBER', $)");
    for (int d = 1; d <= dofs; ++d)
        write_both("(' DOF', i3, $)", {d});
    write_both("('  PRINT')");
}

void cmd_peqs(std::string_view) {
    const int count = get_int(num_nodes);
    if (count < 1) return print_both(" \n\tNumber of nodes < 1\n");
    if (!find_array(bcid).is(type_integer))
        return print_both(" \n\tEquation array .bcid not found\n");
    const ArrayRef print_ref = find_array(bcid_print);
    if (!print_ref.is(type_integer)) return print_both(" \n\tArray .bcid_print not found\n");
    const ArrayRef eqs_ref = find_array(node_eqs);
    if (!eqs_ref.is(type_integer)) return print_both(" \n\tEquation array .node_eqs not found\n");
    const auto nodes = open_codes();
    if (!nodes) return;
    const auto eqs = as_matrix<const std::int32_t>(eqs_ref);
    const auto print = as_span<const std::int32_t>(print_ref);
    if (eqs.cols < count || std::ssize(print) < count)
        return print_both(" \n\tNodal arrays do not agree in size\n");

    write_heading(eqs.rows);
    const std::string text = "(i5,2x," + std::to_string(eqs.rows + 1) + "i7)";
    const Format row = Format::from_text(text);
    for (int n = 1; n <= count; ++n) {
        if (!nodes->is_active(n)) continue;
        FormatItems items;
        items.add(n).add(eqs.col(n)).add(print[nth(n)]);
        write_both(row, items);
    }
}

} // namespace

// --- node_order ---------------------------------------------------------------------------------

namespace {

/// True for the reverse order, the default; nothing when the option is another.
std::optional<bool> wants_reverse() {
    const std::string_view text = record_text();
    const std::size_t dash = text.find(" -");
    if (dash == std::string_view::npos) return true;
    std::string_view option = text.substr(dash + 2);
    option = option.substr(0, option.find_first_of(" \t"));
    if (option.empty() || option == "rcm") return true;
    if (option == "cm") return false;
    return std::nullopt;
}

void cmd_node_order(std::string_view) {
    const auto reverse = wants_reverse();
    if (!reverse) return print_both(" \n\tIncorrect option\n");
    const int count = get_int(num_nodes);
    if (count < 1) return print_both(" \n\tNumber of nodes .le. 0\n");

    take_connectivity();
    elem_call({1, 0, 1}, 0);
    const Connectivity mesh = take_connectivity();
    if (std::ranges::any_of(mesh.nodes, [&](std::int32_t n) { return n > count; }))
        shutdown_with(" \n\tNode number of an element is out of range\n");
    const NodeOrdering result = order_nodes(mesh.end, mesh.nodes, count, *reverse);
    delete_array(node_eq_order);
    if (result.parts == 0) return print_both(" \n\tNo connected nodes\n");
    if (result.parts > 1)
        shutdown_with(" \n\tThe mesh is in " + std::to_string(result.parts) +
                      " parts that no element joins; node " + std::to_string(result.second_part) +
                      " is in the second part. Join the parts by a truss of zero stiffness and "
                      "zero mass before node_order.\n");
    const int length = static_cast<int>(result.order.size());
    std::ranges::copy(result.order, create_matrix<std::int32_t>(node_eq_order, length, 0).data);
}

constexpr Command rows[] = {
    {.words = {"num_eqs"},
     .run = cmd_num_eqs,
     .summary = "number the equations",
     .help =
         "Command Syntax\n\tnum_eqs  [-#eqs]\n\n"
         "Numbers the equations and lays out the profile of the global matrices. form_k does the "
         "same first, so num_eqs is needed only by jobs that form the mass matrix alone.\n\n"
         "-#eqs\tNumber anew. Without it, equation numbers that exist stay as they are.\n\n"
         "Must follow all nodes, bcid, elements and nodal_constraint. Reports the number of "
         "equations and the size of the stiffness matrix.\n\n"
         "Example:\n\tnum_eqs -#eqs\n\n"
         "Arrays created: .node_eqs (degrees of freedom by nodes: above 0 an equation, 0 "
         "restrained, -k the k-th nodal constraint), .#eqs, .kdiag_loc(.#eqs+1) the positions of "
         "the diagonals in a profile, .kstr_size its length. A new numbering deletes .kstr and "
         ".mstr.\n\n"
         "See Also\n\tpeqs\n\tnode_order\n\tform_k\n"},
    {.words = {"peqs", "peqns"},
     .run = cmd_peqs,
     .summary = "print equation numbers",
     .help = "Command Syntax\n\tpeqs\n\n"
             "Prints the equation numbers of the degrees of freedom of each node, and the print "
             "code of the node. peqns is the same command.\n\n"
             "A number above 0 is an equation, 0 a restrained degree of freedom, and -k one that "
             "depends on others by the k-th nodal constraint.\n\n"
             "Example:\n\tpeqs\n\n"
             "See Also\n\tnum_eqs\n\tbcid\n"},
    {.words = {"node_order"},
     .run = cmd_node_order,
     .summary = "order nodes for a small stiffness matrix",
     .help =
         "Command Syntax\n\tnode_order  [-cm]  [-rcm]\n\n"
         "Finds an order of the nodes in which the profile of the global matrices is small; the "
         "equations are then numbered in it.\n\n"
         "-rcm\tReverse Cuthill-McKee order (default).\n\n"
         "-cm\tCuthill-McKee order.\n\n"
         "Must follow all elements and nodal_constraint, and immediately precede num_eqs, or form_k "
         "when num_eqs is not used. Give it again when the mesh changes. Nodes that no element joins "
         "to others are left out and get no equations. All other nodes must be joined to each other: "
         "for a mesh in several parts the program ends, after saving the database. Join the parts by "
         "a truss of zero stiffness and zero mass.\n\n"
         "Example:\n\tnode_order\n\tform_k -#eqs\n\n"
         "Array created: .node_eq_order, the connected nodes in order.\n\n"
         "See Also\n\tnum_eqs\n\tform_k\n"},
};

} // namespace

std::span<const Command> eqns_rows() {
    return rows;
}

} // namespace quelor
