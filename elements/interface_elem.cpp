// Surface elements without stiffness and mass. Reads `.xyz`, `.node_eqs`; writes the arrays of
// interface_elem.hpp, nodes of a subdivision; workspaces `$interfaceedata`, `$interface_subdivide`.
#include "elements/interface_elem.hpp"

#include "elements/element_family.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"
#include "numeric/point_index.hpp"

#include <optional>
#include <vector>

namespace quelor {

namespace {

constexpr std::string_view title = "INTERFACE";
constexpr std::string_view trial = "$interface_el";
enum Row {
    print_row = 5,
    face_row = interface_table.face_row,
    id_row = interface_table.number_row,
    rows_of_table = 8
};

// --- input --------------------------------------------------------------------------------------

/// An element and those generated from it: sequences of gen + 1 elements, gen_2d + 1 of them.
struct InterfaceRecord {
    std::int32_t n = no_key;
    std::array<std::int32_t, 4> nodes{};
    std::int32_t print = 0, face = 0;
    std::int32_t gen = 0, gen_2d = 0, inc_el = 0;
    std::array<std::int32_t, 2> inc{}, inc_2d{}; // of nodes 1 and 2, of nodes 3 and 4
};

/// The next record; nothing at the end of the input.
std::optional<InterfaceRecord> next_interface_record() {
    next_record("Enter element data\n");
    InterfaceRecord r;
    get_int_par("n=", r.n);
    if (r.n == no_key) return std::nullopt;
    get_int_par("nodes=", r.nodes);
    get_int_par("print=", r.print);
    get_int_par("face=", r.face);
    get_int_par("gen=", r.gen);
    get_int_par("inc=", r.inc);
    get_int_par("gen_2d=", r.gen_2d);
    get_int_par("inc_2d=", r.inc_2d);
    get_int_par("inc_el=", r.inc_el);
    if (r.nodes[3] == 0) r.nodes[3] = r.nodes[2];
    return r;
}

std::array<std::int32_t, 4> advanced(const std::array<std::int32_t, 4>& nodes,
                                     const std::array<std::int32_t, 2>& inc, std::int64_t steps) {
    return {advanced_node(nodes[0], inc[0], steps), advanced_node(nodes[1], inc[0], steps),
            advanced_node(nodes[2], inc[1], steps), advanced_node(nodes[3], inc[1], steps)};
}

void store_interface(Matrix<std::int32_t> el, int column, const InterfaceElement& element, int id) {
    std::ranges::copy(element.nodes, el.col(column).begin());
    el(print_row, column) = element.print;
    el(face_row, column) = element.face;
    el(id_row, column) = id;
}

void store_interface_record(const InterfaceRecord& r, Matrix<std::int32_t> el) {
    constexpr std::string_view out_of_range = " \n\tElement out of range - INTERFACE\n";
    if (r.gen < 0 || r.gen_2d < 0) shutdown_with(out_of_range);
    const std::int64_t inc_el = r.inc_el == 0 ? std::int64_t{r.gen} + 1 : r.inc_el;
    for (std::int64_t sequence = 0; sequence <= r.gen_2d; ++sequence) {
        const std::int64_t first = r.n + sequence * inc_el;
        if (first < 1 || first + r.gen > el.cols) shutdown_with(out_of_range);
        const auto nodes = advanced(r.nodes, r.inc_2d, sequence);
        for (std::int32_t k = 0; k <= r.gen; ++k) {
            const int e = static_cast<int>(first + k);
            store_interface(el, e, {advanced(nodes, r.inc, k), r.print, r.face}, e);
        }
    }
}

/// Leaves the columns of the elements that are defined; false when there are none.
bool compact_interfaces(Matrix<const std::int32_t> el) {
    std::vector<int> defined;
    for (int e = 1; e <= el.cols; ++e)
        if (el(id_row, e) != 0) defined.push_back(e);
    if (defined.empty()) return false;
    const int count = static_cast<int>(defined.size());
    Result result(interface_el, "$interfaceedata");
    const auto kept = result.matrix<std::int32_t>(rows_of_table, count);
    for (int k = 1; k <= count; ++k)
        std::ranges::copy(el.col(defined[nth(k)]), kept.col(k).begin());
    result.place();
    return true;
}

Matrix<const std::int32_t> open_interfaces() {
    return element_matrix<std::int32_t>(interface_missing, interface_el, rows_of_table, any_size);
}

void read_interfaces() {
    std::int32_t n = 0;
    get_int_par(" n=", n);
    const bool pressure = has_flag(" -pressure");
    if (!count_is_possible(title, n, 1)) return;
    for (const auto name : {interface_el, interface_pressure, trial})
        delete_array(name);
    create_int_scalar(interface_pressure, pressure ? 1 : 0);
    const auto el = create_matrix<std::int32_t>(interface_el, rows_of_table, n);
    while (const auto record = next_interface_record())
        store_interface_record(*record, el);
    if (!compact_interfaces(el)) {
        delete_array(interface_el);
        set_element_group(interface_slot, 0);
        return print_both(" \n\tNo elements defined - INTERFACE\n");
    }
    check_element_nodes_nonzero(title, open_interfaces(), 4);
    set_element_group(interface_slot, 1);
}

// --- subdivision --------------------------------------------------------------------------------

/// The nodes of the model by place: existing ones are found (tolerance 1e-8), missing ones added.
class NodePlacer {
public:
    NodePlacer() {
        const NodeSet set = open_nodes(fe_nodes);
        for (int n = 1; set && n <= set.count; ++n)
            if (set.is_active(n)) index_.add(n, set.at(n));
    }
    /// Number of the node at p; 0, after a message, when there is none and none can be added.
    int at(const Vec3& p) {
        constexpr Vec3 tol{1e-8, 1e-8, 1e-8};
        const NodeSet set = open_nodes(fe_nodes);
        int found = 0;
        index_.visit_candidates(p, tol, [&](int n) {
            if (within(set.at(n), p, tol) && (found == 0 || n < found)) found = n;
        });
        if (found == 0 && (found = node_add(p, -1)) != 0) index_.add(found, p);
        if (found == 0) print_both(" \nNode generation failed; using zero\n");
        return found;
    }

private:
    PointIndex index_;
};

/// Nodes (i, j) of n by m parts, i = 0..n in the 1-2 direction running fastest; bilinear.
std::vector<std::int32_t> grid_nodes(std::span<const std::int32_t> corners, int n, int m,
                                     NodePlacer& placer) {
    const auto x = require_coordinates();
    const std::array p{element_node(x, corners[0]), element_node(x, corners[1]),
                       element_node(x, corners[2]), element_node(x, corners[3])};
    std::vector<std::int32_t> grid;
    for (int j = 0; j <= m; ++j)
        for (int i = 0; i <= n; ++i) {
            const double s = static_cast<double>(i) / n, t = static_cast<double>(j) / m;
            Vec3 q = add_scaled({0, 0, 0}, (1 - s) * (1 - t), p[0]);
            q = add_scaled(q, s * (1 - t), p[1]);
            q = add_scaled(q, s * t, p[2]);
            q = add_scaled(q, (1 - s) * t, p[3]);
            const bool corner = (i == 0 || i == n) && (j == 0 || j == m);
            const std::size_t which = j == 0 ? (i == 0 ? 0u : 1u) : (i == 0 ? 3u : 2u);
            grid.push_back(corner ? corners[which] : placer.at(q));
        }
    return grid;
}

/// The n by m parts of an element: the first takes the element's column, the others follow in
/// `rest`.
void subdivide_element(std::span<std::int32_t> column, int n, int m, NodePlacer& placer,
                       std::vector<InterfaceElement>& rest) {
    const auto grid = grid_nodes(column.first(4), n, m, placer);
    const auto node = [&](int i, int j) { return grid[as_size(j) * as_size(n + 1) + as_size(i)]; };
    for (int j = 0; j < m; ++j)
        for (int i = 0; i < n; ++i) {
            const std::array nodes{node(i, j), node(i + 1, j), node(i + 1, j + 1), node(i, j + 1)};
            if (i == 0 && j == 0)
                std::ranges::copy(nodes, column.begin());
            else
                rest.push_back({nodes, column[print_row - 1], column[face_row - 1]});
        }
}

/// True when an element has the ID number.
bool has_id(Matrix<const std::int32_t> el, std::int32_t id) {
    for (int e = 1; e <= el.cols; ++e)
        if (el(id_row, e) == id) return true;
    return false;
}

void subdivide_interfaces() {
    std::array<std::int32_t, 2> range{}, parts{1, 1};
    get_int_par(" range=", range);
    get_int_par(" nxm=", parts);
    const auto el = open_interfaces();
    const std::int32_t first = range[0], last = range[1];
    const auto [n, m] = parts;
    if (!has_id(el, first))
        return print_both(" \n\tCould not find first element in range to subdivide\n");
    if (!has_id(el, last) || last < first)
        return print_both(" \n\tCould not find last element in range to subdivide\n");
    const auto inside = [&](int e) { return first <= el(id_row, e) && el(id_row, e) <= last; };
    std::int64_t total = 0;
    for (int e = 1; e <= el.cols; ++e)
        total += inside(e) ? std::int64_t{n} * m : 1;
    if (n < 1 || m < 1 || n > most_elements || m > most_elements || total > most_elements)
        return print_both(" \n\tNumber of parts to subdivide into not possible\n");
    check_element_nodes_nonzero(title, el, 4);
    if (n == 1 && m == 1) return;

    Result result(interface_el, "$interface_subdivide");
    copy_array(interface_el, result.name());
    const auto table = as_matrix<std::int32_t>(result.array());
    NodePlacer placer;
    std::vector<InterfaceElement> rest;
    for (int e = 1; e <= table.cols; ++e)
        if (inside(e)) subdivide_element(table.col(e), n, m, placer, rest);
    result.place();
    append_interfaces(rest);
    delete_array(node_eqs); // there may be new nodes
    delete_array(num_eqs);
}

// --- requests -----------------------------------------------------------------------------------

void print_interfaces() {
    const auto el = open_interfaces();
    write_both("(/, ' ELEMENT  NODE-1  NODE-2  NODE-3  NODE-4   PRINT    FACE')");
    for (int e = 1; e <= el.cols; ++e)
        write_both("(7(i6,2x))", {el(id_row, e), el.col(e).first(6)});
}

} // namespace

void append_interfaces(std::span<const InterfaceElement> elements) {
    if (elements.empty()) return;
    if (!array_exists(interface_pressure)) create_int_scalar(interface_pressure, 0);
    const int extra = static_cast<int>(elements.size());
    const auto el = append_columns<std::int32_t>(interface_el, rows_of_table, extra);
    const int first = el.cols - extra;
    const std::int32_t last_id = largest_in_row(el, id_row);
    for (int k = 1; k <= extra; ++k)
        store_interface(el, first + k, elements[nth(k)], last_id + k);
    set_element_group(interface_slot, 1);
}

void interface_element(Request request) {
    switch (task_of(request)) {
    case Task::input:
        return has_flag(" -subdivide") ? subdivide_interfaces() : read_interfaces();
    case Task::column_heights:
        return add_all_column_heights(open_interfaces(), 4, all_six);
    case Task::connectivity:
        return elem_conn0(open_interfaces(), 4);
    case Task::loads:
        if (get_int(interface_pressure) == 1)
            print_both(" Option in element INTERFACE not implemented\n");
        return;
    case Task::trial_state:
        open_interfaces();
        return copy_array(interface_el, trial);
    case Task::commit_state:
        return commit_state(trial, interface_el);
    case Task::print_input:
        return print_interfaces();
    default:
        return; // no stiffness, no mass
    }
}

// --- help ---------------------------------------------------------------------------------------

std::string_view interface_help() {
    return "Command Syntax\n\tinterface  n=?  [-pressure]\n\t"
           "   n=nel  nodes=node1,node2,node3,node4  [print=print]  [face=face]  [gen=gen  "
           "inc=inc1,inc2]  [gen_2d=gen_2d  inc_2d=inc1_2d,inc2_2d  inc_el=inc_el]\n\t"
           "   (blank line)\n\t"
           "interface  -subdivide  range=?,?  nxm=?,?\n\n"
           "Input of quadrilateral and triangular surface elements without stiffness and mass. They "
           "mark a surface of the structure, for drawing and for hyd_convert_fea_mesh. Their nodes are "
           "usually tied to the structure (nodal_constraint).\n\n"
           "n\n\tOn the command line the largest element number (ID); on a record the ID of its "
           "element. IDs need not be sequential. A number out of range ends the program; the database "
           "is saved first. A blank line ends the input.\n\n"
           "-pressure\n\tMarks the elements as loaded by pressure; loads from pressure are not "
           "available in this version.\n\n"
           "nodes\n\tCorner nodes, counterclockwise seen from the positive face. For a triangle node4 "
           "is left out or equal to node3. Local x runs from node 1 to node 2, y toward node 4, z by "
           "the right-hand rule.\n\n"
           "print\n\tPrint code. Default is 0.\n\n"
           "face\n\t0 dry (the default), -1 pressure on the negative face, 1 on the positive face.\n\n"
           "gen\n\tNumber of further elements in the sequence of the record (default 0), numbered n+1, "
           "n+2, ...\n\n"
           "inc\n\tNode increments within the sequence: inc1 of nodes 1 and 2, inc2 of nodes 3 and 4. "
           "Defaults are 0.\n\n"
           "gen_2d, inc_2d\n\tNumber of further sequences, and the node increments from sequence to "
           "sequence. Defaults are 0.\n\n"
           "inc_el\n\tIncrement of element numbers from sequence to sequence. Default is gen+1.\n\n"
           "-subdivide\n\tReplaces the elements with IDs range=first,last by n by m elements each, n in "
           "the 1-2 direction and m in the 1-4 direction. Nodes that are at the place are used, missing "
           "ones are added. The first part keeps the ID, the others take the numbers after the largest "
           "in use.\n\n"
           "Example (a grid of 4 by 2 elements on nodes 1 to 15, 5 in a row):\n\tinterface n=8\n\t"
           "n=1 nodes=1,2,7,6 gen=3 inc=1,1 gen_2d=1 inc_2d=5,5 face=-1\n\t(blank line)\n\n"
           "Arrays created: .interface_el(8,number of elements) node1 to node4, print code, face, ID#, "
           "not used, one column a defined element; .interface_pressure. The group code is in "
           ".elem_grp.\n\n"
           "See Also\n\tpinterface\n\tbeam3d\n\tnodal_constraint\n\thyd_convert_fea_mesh\n";
}

std::string_view pinterface_help() {
    return "Command Syntax\n\tpinterface\n\n"
           "Prints the interface elements: ID, nodes, print code and face.\n\n"
           "Example:\n\tpinterface\n\n"
           "See Also\n\tinterface\n";
}

} // namespace quelor
