// The element protocol and the services that every element uses.
//
// The element library is a fixed table of 40 slots; the global commands know no type and reach the
// elements only through elem_call, which walks the slots in order. An element serves numbered
// requests; task_of gives them names.
#pragma once

#include "kernel/dbfgen.hpp"

#include <array>

namespace quelor {

/// integer (40): group code of each slot, 0 when the type is not in the model. Written by element
/// input and `elem_grp`.
inline constexpr std::string_view elem_grp = ".elem_grp";
inline constexpr int element_slots = 40;

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
    error,             ///< 5 0 type
    relative_error,    ///< 5 1 0
    mesh_export        ///< 6 0 0
};
constexpr Task task_of(Request request);

/// One row of the element table.
struct ElementRow {
    int slot;                        ///< 1 to 40
    std::string_view alias;          ///< user's name, "hyd_panel"; empty when the slot is unused
    std::string_view kind;           ///< one-line description, its summary in `index`
    void (*routine)(Request);        ///< null: not built yet, or an unused slot
    std::string_view help;           ///< help of the input command
    std::string_view print_help;     ///< help of the print command
};
/// All 40 rows in slot order; defined by elements/element_table.cpp.
std::span<const ElementRow, element_slots> element_rows();
/// Runs one slot's routine; an unused or unbuilt slot says so.
void call_element(int slot, Request request);

/// Offers a request to every active slot; source 1 gives each slot its own group code as modifier 1.
void elem_call(Request request, int source);
/// Stores a code in `.elem_grp`, which is made when absent or of another length.
void set_element_group(int slot, int code);

} // namespace quelor
