// Reads `.#eqs`; writes `.f_internal`; the elements read `.disp` and `$ddisp`, which is a workspace
// of zeros here when no solver has made it.
#include "fem/state.hpp"

#include "fem/assembly.hpp"
#include "fem/elemutil.hpp"
#include "fem/formkm.hpp"
#include "fem/nodes.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>

namespace quelor {

namespace {

/// False after a message when there are no equations.
bool prepare_internal_force(StatePass pass) {
    const ArrayRef present = find_array(f_internal);
    if (pass != StatePass::both && present.is(type_real)) {
        if (pass == StatePass::trial) std::ranges::fill(as_span<double>(present), 0.0);
        return true;
    }
    const int neq = get_int(num_eqs);
    if (neq < 1) {
        constexpr std::string_view message = " \n\t.#eqs not found in state\n";
        if (pass != StatePass::both) shutdown_with(message);
        return print_both(message), false;
    }
    create_matrix<double>(f_internal, neq, 0);
    return true;
}

} // namespace

void element_state(StatePass pass) {
    if (!prepare_internal_force(pass)) return;
    const ZeroWhereAbsent increment(ddisp, find_array(f_internal).rows());
    if (pass != StatePass::commit) elem_call({2, 1, 0}, 0);
    if (pass != StatePass::trial) elem_call({2, 2, 0}, 0);
}

void print_element_state(StateKind kind) {
    elem_call({4, kind == StateKind::committed ? 2 : 10, 0}, 0);
}

// --- rows ---------------------------------------------------------------------------------------

static void cmd_state(std::string_view) {
    element_state(StatePass::both);
}

static void cmd_pstate(std::string_view) {
    print_element_state(StateKind::committed);
}

static void cmd_response(std::string_view) {
    elem_call({3, 0, 0}, 0);
}

static void cmd_presponse(std::string_view) {
    elem_call({4, 3, 0}, 0);
}

static constexpr Command rows[] = {
    {.words = {"state"},
     .run = cmd_state,
     .summary = "determine the state of the elements",
     .help =
         "Command Syntax\n\tstate\n\n"
         "Determines the state of all active elements, such as the forces of trusses and beams, "
         "from the displacements .disp, and the internal forces at the equations. It has no "
         "arguments. The displacements are those of lsolve or nsolve.\n\n"
         "Example (after form_k):\n\tlsolve\n\tstate\n\tpstate\n\n"
         "Arrays created: .f_internal(.#eqs), and the state array of each type, which its own "
         "help names.\n\n"
         "See Also\n\tpstate\n\tresponse\n\tlsolve\n"},
    {.words = {"pstate"},
     .run = cmd_pstate,
     .summary = "print the state of the elements",
     .help =
         "Command Syntax\n\tpstate\n\n"
         "Prints the state of all active elements, as left by state or a nonlinear solution. It has "
         "no arguments.\n\n"
         "Example:\n\tpstate\n\n"
         "See Also\n\tstate\n\tpresponse\n"},
    {.words = {"response"},
     .run = cmd_response,
     .summary = "determine the response of the elements",
     .help =
         "Command Syntax\n\tresponse\n\n"
         "Determines the response of all active elements: stresses and other results that are not "
         "state. It has no arguments. Types whose state says everything, like the trusses, have no "
         "response of their own.\n\n"
         "Example (after lsolve):\n\tstate\n\tresponse\n\tpresponse\n\n"
         "Arrays created: the response array of each type, which its own help names.\n\n"
         "See Also\n\tpresponse\n\tstate\n"},
    {.words = {"presponse", "presp"},
     .run = cmd_presponse,
     .summary = "print the response of the elements",
     .help =
         "Command Syntax\n\tpresponse (presp)  [-file]  [-append]\n\n"
         "Prints the response of all active elements.\n\n"
         "-file\n\tEach type also writes its results to a file of its own; the help of the type names "
         "it.\n\n"
         "-append\n\tThe files are added to. The default is to begin them anew.\n\n"
         "Example:\n\tpresponse -file\n\n"
         "See Also\n\tresponse\n\tpstate\n"},
};

std::span<const Command> state_rows() {
    return rows;
}

} // namespace quelor
