// Surface elements without stiffness and mass. Reads `.xyz`, `.node_eqs`; writes the arrays of
// interface_elem.hpp, nodes of a subdivision; workspaces `$interfaceedata`, `$interface_subdivide`.
#include "elements/interface_elem.hpp"

#include "elements/grid_input.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/require.hpp"

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

constexpr QuadTable interface_quads{.el = interface_el,
                                    .title = title,
                                    .missing = interface_missing,
                                    .kept = "$interfaceedata",
                                    .parts = "$interface_subdivide",
                                    .rows = rows_of_table,
                                    .id_row = id_row,
                                    .middle_row = 0};

// --- input --------------------------------------------------------------------------------------

void store_interface(Matrix<std::int32_t> el, int column, const InterfaceElement& element, int id) {
    std::ranges::copy(element.nodes, el.col(column).begin());
    el(print_row, column) = element.print;
    el(face_row, column) = element.face;
    el(id_row, column) = id;
}

Matrix<const std::int32_t> open_interfaces() {
    return open_quads(interface_quads);
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
    while (auto record = next_grid_record("Enter element data\n", 4)) {
        InterfaceElement element;
        get_int_par("print=", element.print);
        get_int_par("face=", element.face);
        if (record->nodes[3] == 0) record->nodes[3] = record->nodes[2];
        generate_grid(*record, std::array{1, 1, 2, 2}, n, " \n\tElement out of range - INTERFACE\n",
                      [&](int e, std::span<const std::int32_t> nodes) {
                          std::ranges::copy(nodes, element.nodes.begin());
                          store_interface(el, e, element, e);
                      });
    }
    if (!compact_quads(interface_quads)) {
        set_element_group(interface_slot, 0);
        return print_both(" \n\tNo elements defined - INTERFACE\n");
    }
    check_element_nodes_nonzero(title, open_interfaces(), 4);
    set_element_group(interface_slot, 1);
}

void subdivide_interfaces() {
    if (!subdivide_quads(interface_quads)) return;
    if (!array_exists(interface_pressure)) create_int_scalar(interface_pressure, 0);
    set_element_group(interface_slot, 1);
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
