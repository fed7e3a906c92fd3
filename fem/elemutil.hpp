// The element protocol and the services that every element uses.
//
// The element library is a fixed table of 40 slots; the global commands know no type and reach the
// elements only through elem_call, which walks the slots in order. An element serves numbered
// requests; task_of gives them names.
#pragma once

#include "kernel/alias.hpp"
#include "kernel/command.hpp"
#include "kernel/dbfgen.hpp"
#include "numeric/vectors.hpp"

namespace quelor {

/// integer (40): group code of each slot, 0 when the type is not in the model. Written by element
/// input and `elem_grp`.
inline constexpr std::string_view elem_grp = ".elem_grp";
/// real: global error estimate, -1 before any element has added to it. Written by `fem_error`.
inline constexpr std::string_view fem_error = ".fem_error";

// --- protocol -----------------------------------------------------------------------------------

/// What a global command asks of the elements, as the protocol's three numbers.
struct Request {
    int option, modifier1, modifier2;
};

enum class Task {
    none,
    input,             ///< 0 0 0: delete the type's arrays, read input, store the group code
    column_heights,    ///< 1 0 0
    connectivity,      ///< 1 0 1
    stiffness,         ///< 1 code 0: modifier1 is the group code: 1 linear, 2 geometric too
    loads,             ///< 1 1 1
    mass,              ///< 1 1 2
    mass_diagonal,     ///< 1 1 3
    damping,           ///< 1 1 4
    damping_diagonal,  ///< 1 1 5
    lagrange_g,        ///< 1 1 10
    trial_state,       ///< 2 1 0
    commit_state,      ///< 2 2 0
    response,          ///< 3 0 0
    print_input,       ///< 4 1 0
    print_state,       ///< 4 2 0
    print_trial_state, ///< 4 10 0
    print_response,    ///< 4 3 0
    error,             ///< 5 0 type: 0 strain energy, 1 user-defined
    relative_error,    ///< 5 1 0
    mesh_export        ///< 6 0 0
};

/// The tasks of option 1, matrices. Stiffness is told by both modifiers: modifier 1 is then the
/// group code, which may be any number but 0.
constexpr Task matrix_task(Request r) {
    if (r.modifier1 == 0)
        return r.modifier2 == 0   ? Task::column_heights
               : r.modifier2 == 1 ? Task::connectivity
                                  : Task::none;
    if (r.modifier2 == 0) return Task::stiffness;
    if (r.modifier1 != 1) return Task::none;
    switch (r.modifier2) {
    case 1:
        return Task::loads;
    case 2:
        return Task::mass;
    case 3:
        return Task::mass_diagonal;
    case 4:
        return Task::damping;
    case 5:
        return Task::damping_diagonal;
    case 10:
        return Task::lagrange_g;
    default:
        return Task::none;
    }
}

constexpr Task print_task(Request r) {
    switch (r.modifier1) {
    case 1:
        return Task::print_input;
    case 2:
        return Task::print_state;
    case 3:
        return Task::print_response;
    case 10:
        return Task::print_trial_state;
    default:
        return Task::none;
    }
}

/// The whole protocol in one place.
constexpr Task task_of(Request r) {
    switch (r.option) {
    case 0:
        return Task::input;
    case 1:
        return matrix_task(r);
    case 2:
        return r.modifier1 == 1   ? Task::trial_state
               : r.modifier1 == 2 ? Task::commit_state
                                  : Task::none;
    case 3:
        return Task::response;
    case 4:
        return print_task(r);
    case 5:
        return r.modifier1 == 0 ? Task::error : Task::relative_error;
    case 6:
        return Task::mesh_export;
    default:
        return Task::none;
    }
}

/// The table of a type's elements, for those who draw them or make panels of them: integer, one
/// column an element, node numbers in the first rows.
struct ElementTable {
    std::string_view name{};      ///< ".beam3d_el"; empty: neither drawn nor wet
    std::string_view missing{};   ///< message when it is absent
    int nodes = 0;                ///< of an element as it is drawn, or as a panel
    int gmsh_type = 0;            ///< 0: not drawn
    int number_row = 0;           ///< row of the element's own number; 0: the number of the column
    int face_row = 0;             ///< row: 0 dry, -1 or 1 the wet face; 0: a type without faces
    std::string_view found{};     ///< words of the conversion to panels, behind the count,
    std::string_view converted{}; ///< and when it is done
};

/// One row of the element table.
struct ElementRow {
    int slot;                    ///< 1 to 40
    std::string_view alias;      ///< user's name, "hyd_panel"; empty when the slot is unused
    std::string_view kind;       ///< one-line description, its summary in `index`
    void (*routine)(Request);    ///< null: not built yet, or an unused slot
    std::string_view help;       ///< help of the input command; empty without a routine
    std::string_view print_help; ///< help of the print command; empty without a routine
    ElementTable table{};
};
/// All 40 rows in slot order; defined by elements/element_table.cpp.
std::span<const ElementRow, element_slots> element_rows();
/// The columns of a type's table; the fatal path, with its message, when it is absent or has not
/// the rows that the description names.
Matrix<const std::int32_t> require_elements(const ElementTable& table);
/// Runs one slot's routine; an unused or unbuilt slot says so. The lines of a mesh file are written
/// here, from the row.
void call_element(int slot, Request request);

/// Offers a request to every active slot; source 0 passes it as it is, source 1 gives each slot its
/// own group code as modifier 1. The pass of column heights ends with the nodal constraints.
void elem_call(Request request, int source);
/// Stores a code in `.elem_grp`, which is made when absent or of another length.
void set_element_group(int slot, int code);

std::span<const Command> elemutil_rows();

// --- nodes of elements --------------------------------------------------------------------------

/// After input: every node number, rows 1 to `nodes` of the element table, lies between 0 and
/// `.#nodes`, and each one above 0 is an active node. Each bad element is named on both units, and
/// any leads to the fatal path.
/// name  upper-case name of the type;   el  one column an element
void check_element_nodes(std::string_view name, Matrix<const std::int32_t> el, int nodes);
/// The same where 0 is no node number.
void check_element_nodes_nonzero(std::string_view name, Matrix<const std::int32_t> el, int nodes);
/// After input: no element has length 0. Each bad one is named, and any leads to the fatal path.
void check_element_lengths(std::string_view name, std::span<const double> lengths);

// --- element matrices and errors ----------------------------------------------------------------

/// result := T^T K T, with T the block-diagonal matrix that repeats the (r,c) block t n/r times.
/// k  in  (n,n);   result  out  (c n/r, c n/r). False after a message when the sizes do not fit.
bool elem_tkt(Matrix<const double> k, Matrix<const double> t, Matrix<double> result);

/// Adds an element's error to `.fem_error`; one below -1e-10 takes the fatal path.
void add_element_error(double error);
/// Divides element errors by `.fem_error`; a global error of 0 leaves them, with a message.
void scale_element_errors(std::span<double> errors);

} // namespace quelor
