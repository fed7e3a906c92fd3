// Forming of the global stiffness, mass and damping. Reads the element groups, `.mass_inp`,
// `.dampers_inp`; writes the arrays of formkm.hpp; `.disp`, `$ddisp` are made of zeros for the pass
// where they do not exist.
#include "fem/formkm.hpp"

#include "fem/assembly.hpp"
#include "fem/elemutil.hpp"
#include "fem/eqns.hpp"
#include "fem/loads.hpp"
#include "fem/masses.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/project.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "numeric/profile.hpp"

#include <algorithm>
#include <cmath>
#include <string>

namespace quelor {

namespace {

/// `.#eqs`; below 1 is a message, and the fatal path where a solver asks.
int count_equations(FormMode mode) {
    const int count = get_int(num_eqs);
    if (count >= 1) return count;
    print_both(" \n\tNumber of equations (.#eqs) < 1\n");
    if (mode != FormMode::command) shutdown();
    return 0;
}

/// An existing matrix set to 0; an absent one gives the fatal path.
void clear_matrix(std::string_view name) {
    std::ranges::fill(as_span<double>(require_array(name, type_real, {any_size})), 0.0);
}

// --- stiffness

struct StiffnessWork {
    bool renumber, stiffness, loads;
};

StiffnessWork read_work() {
    const StiffnessWork work{has_flag(" -#eqs"), has_flag(" -stiff"), has_flag(" -loads")};
    if (work.renumber || work.stiffness || work.loads) return work;
    return {false, true, true};
}

void assemble_stiffness(FormMode mode, const StiffnessWork& work) {
    const int count = get_int(num_eqs);
    const ZeroWhereAbsent zero_disp(disp, count);
    const ZeroWhereAbsent zero_ddisp(ddisp, count);
    if (work.loads) elem_call({1, 1, 1}, 0);
    if (!work.stiffness) return;
    elem_call({1, 1, 0}, mode == FormMode::linear ? 0 : 1);
    create_int_scalar(k_status, 0);
}

void command_stiffness() {
    const double start = cpu_seconds();
    const StiffnessWork work = read_work();
    if (!number_equations(work.renumber)) return;
    if (!work.stiffness && !work.loads) return;
    if (work.loads) form_nodal_loads();
    if (work.stiffness) {
        check_numbering();
        if (!array_exists(kdiag_loc)) return not_found(kdiag_loc);
        create_matrix<double>(kstr, get_int(kstr_size), 0);
    }
    assemble_stiffness(FormMode::command, work);
    write_both("10(5x, 'Time to form K (sec)     =', f10.2, /)", {cpu_seconds() - start});
}

} // namespace

void form_stiffness(FormMode mode) {
    if (mode == FormMode::command) return command_stiffness();
    count_equations(mode);
    clear_matrix(kstr);
    assemble_stiffness(mode, {false, true, false});
}

static void cmd_form_k(std::string_view) {
    form_stiffness(FormMode::command);
}

// --- mass and damping ---------------------------------------------------------------------------

namespace {

/// Mass or damping: its arrays, its requests (consistent; diagonal is the next) and its services.
struct InertiaKind {
    std::string_view name, type, nodal;
    int modifier2;
    GlobalMatrix (*open)(const Equations&);
    bool needs_displacements;
    Format time;
};

constexpr InertiaKind mass_kind{mstr,
                                mstr_type,
                                mass_inp,
                                2,
                                open_mass,
                                true,
                                "10(5x, 'Time to form M (sec)     =', f10.2, /)"};
constexpr InertiaKind damping_kind{cstr,
                                   cstr_type,
                                   dampers_inp,
                                   4,
                                   open_damping,
                                   false,
                                   "10(5x, 'Time to form C (sec)     =', f10.2, /)"};

/// Adds the diagonal element matrices of single nodes.
void add_nodal(const InertiaKind& kind) {
    if (!array_exists(kind.nodal)) return;
    const auto input = require_matrix<double>(kind.nodal, 7);
    const Equations equations = open_equations();
    GlobalMatrix matrix = kind.open(equations);
    for (int k = 1; k <= input.cols; ++k) {
        const std::array node{nearest_int(input(1, k))};
        std::array<std::int32_t, 6> list{};
        element_equations(equations, node, all_six, list);
        add_mass(matrix, list, input.col(k).subspan(1));
    }
}

/// The command's arrays, by its -diag; false after a message.
bool create_inertia(const InertiaKind& kind, int count) {
    const bool diagonal = has_flag(" -diag");
    if (!diagonal && !array_exists(kdiag_loc)) return not_found(kdiag_loc), false;
    create_int_scalar(kind.type, diagonal ? 1 : 0);
    create_matrix<double>(kind.name, diagonal ? count : get_int(kstr_size), 0);
    return true;
}

void form_inertia(const InertiaKind& kind, FormMode mode) {
    const double start = cpu_seconds();
    const int count = count_equations(mode);
    if (count < 1) return;
    if (mode != FormMode::command)
        clear_matrix(kind.name);
    else if (!create_inertia(kind, count))
        return;
    const int modifier2 = kind.modifier2 + (require_int(kind.type) == 1 ? 1 : 0);
    if (kind.needs_displacements) {
        const ZeroWhereAbsent zero_disp(disp, count);
        const ZeroWhereAbsent zero_ddisp(ddisp, count);
        elem_call({1, 1, modifier2}, 0);
    } else {
        elem_call({1, 1, modifier2}, 0);
    }
    add_nodal(kind);
    if (mode == FormMode::command) write_both(kind.time, {cpu_seconds() - start});
}

} // namespace

void form_mass(FormMode mode) {
    form_inertia(mass_kind, mode);
}

void form_damping(FormMode mode) {
    form_inertia(damping_kind, mode);
}

static void cmd_form_m(std::string_view) {
    form_mass(FormMode::command);
}

static void cmd_form_c(std::string_view) {
    form_damping(FormMode::command);
}

// --- the others ---------------------------------------------------------------------------------

static void cmd_form_lagrange_g(std::string_view) {
    constexpr int unit_g = 22;
    constexpr int unit_tnode = 23;
    if (fortopen_ext(unit_g, ".min_G", "REPLACE", "FORMATTED") != 0) return;
    if (fortopen_ext(unit_tnode, ".min_tnode", "REPLACE", "FORMATTED") == 0) {
        if (number_equations(false)) elem_call({1, 1, 10}, 0);
        close_unit(unit_tnode);
    }
    close_unit(unit_g);
}

static void cmd_form_g(std::string_view) {
    print_both(" \n\t\tCommand has not been implemented in this version.\n");
}

static void cmd_check_diag(std::string_view) {
    const auto matrix_name = get_arg(1);
    const auto loc_name = get_arg(2);
    if (is_blank(matrix_name) || is_blank(loc_name))
        return print_both(" \n\tTwo arguments required\n");
    const ArrayRef matrix_ref = find_array(matrix_name);
    const ArrayRef loc_ref = find_array(loc_name);
    if (!matrix_ref) return not_found(matrix_name);
    if (!loc_ref) return not_found(loc_name);
    if (matrix_ref.type != type_real || loc_ref.type != type_integer)
        return print_both(" \n\tCommand not implemented for array type\n");
    const auto matrix = as_span<double>(matrix_ref);
    const auto loc = as_span<const std::int32_t>(loc_ref);
    if (!profile_is_valid(loc, matrix_ref.size()))
        return print_both(" \n\tDimensions of arrays not compatible\n");

    double zero = 0;
    double value = 1;
    get_real_par("zero=", zero);
    get_real_par("v=", value);
    const bool print = !has_flag(" -noprint");
    int count = 0;
    for (std::size_t j = 0; j + 1 < loc.size(); ++j) {
        double& diagonal = matrix[nth(loc[j])];
        if (zero == 0 ? diagonal != 0 : !(std::abs(diagonal) <= zero)) continue;
        diagonal = value;
        ++count;
        if (print) write_both("20(5x, 'Replaced diagonal ', i5)", {static_cast<int>(j) + 1});
    }
    if (count > 0) write_both("40(/, 5x, 'Number diagonals replaced =', i5,/)", {count});
}

// --- rows ---------------------------------------------------------------------------------------

static constexpr Command rows[] = {
    {.words = {"form_k", "formk"},
     .run = cmd_form_k,
     .summary = "form stiffness and loads",
     .help =
         "Command Syntax\n\tform_k  [-#eqs]  [-stiff]  [-loads]\n\n"
         "Numbers the equations if there are no numbers yet, and forms the global stiffness and the "
         "load patterns. With flags it does what they say only. formk is the same command.\n\n"
         "-#eqs\tNumber the equations anew.\n\n"
         "-stiff\tForm the stiffness.\n\n"
         "-loads\tForm the load patterns.\n\n"
         "Must follow nodes, bcid, elements, nodal_constraint and, when it is used, node_order. "
         "Each element type is formed by its group code, linear or with geometric stiffness.\n\n"
         "Example:\n\tform_k\n\n"
         "Arrays created: .kstr(.kstr_size) the stiffness, upper profile over .kdiag_loc; .k_status "
         "= 0 (1 when .kstr is factored); .load_pat(.#eqs, patterns); and those of num_eqs.\n\n"
         "See Also\n\tnum_eqs\n\tnodef\n\telem_grp\n\tlsolve\n\tform_m\n"},
    {.words = {"form_m", "formm"},
     .run = cmd_form_m,
     .summary = "form mass matrix",
     .help =
         "Command Syntax\n\tform_m  [-diag]\n\n"
         "Forms the global mass of the elements and of the nodal masses given by mass. formm is the "
         "same command.\n\n"
         "-diag\tDiagonal mass. A consistent element mass is lumped so that the sum of its entries "
         "stays; this does not suit every element. Default is a consistent mass.\n\n"
         "Must follow num_eqs or form_k.\n\n"
         "Example:\n\tform_m -diag\n\n"
         "Arrays created: .mstr, upper profile over .kdiag_loc, or with -diag a vector of .#eqs; "
         ".mstr_type = 0 or, with -diag, 1.\n\n"
         "See Also\n\tmass\n\tmass_summary\n\tform_k\n\tform_c\n"},
    {.words = {"form_c", "formc"},
     .run = cmd_form_c,
     .summary = "form damping matrix",
     .help = "Command Syntax\n\tform_c  [-diag]\n\n"
             "Forms the global damping of the elements and of the nodal dampers given by dampers. "
             "formc is the same command.\n\n"
             "-diag\tDiagonal damping. A full element matrix is lumped as in form_m. Default is a "
             "profile matrix.\n\n"
             "Must follow num_eqs or form_k.\n\n"
             "Example:\n\tform_c\n\n"
             "Arrays created: .cstr, .cstr_type, like .mstr, .mstr_type of form_m.\n\n"
             "See Also\n\tdampers\n\tform_m\n\tform_k\n"},
    {.words = {"form_lagrangeG"},
     .run = cmd_form_lagrange_g,
     .summary = "write element Lagrange constraint matrices",
     .help =
         "Command Syntax\n\tform_lagrangeG\n\n"
         "Writes the G matrices of the Lagrange constraint of the elements that have one to the "
         "text files <project>.min_G and <project>.min_tnode. Equations are numbered first if "
         "they have not been.\n\n"
         "Example:\n\tform_lagrangeG\n\n"
         "See Also\n\tform_k\n"},
    {.words = {"form_G"},
     .run = cmd_form_g,
     .summary = "not implemented",
     .help = "Command Syntax\n\tform_G\n\nNot implemented in this version.\n\n"
             "Example:\n\tform_G\n\nSee Also\n\tform_lagrangeG\n"},
    {.words = {"check_diag"},
     .run = cmd_check_diag,
     .summary = "replace zero diagonals of a profile matrix",
     .help =
         "Command Syntax\n\tcheck_diag  arg1  arg2  [zero=?]  [v=?]  [-noprint]\n\n"
         "Replaces the zero diagonals of the real profile matrix arg1 with positions of the "
         "diagonals arg2, so that degrees of freedom without stiffness do not stop the "
         "factorization.\n\n"
         "zero\n\tA diagonal counts as zero when its magnitude is not above this value. Default is "
         "0.\n\n"
         "v\n\tNew value. Default is 1.\n\n"
         "-noprint\n\tDo not list the equations.\n\n"
         "Example:\n\tcheck_diag .kstr .kdiag_loc\n\n"
         "arg1 is changed; no array is created.\n\n"
         "See Also\n\tform_k\n\tlsolve\n"},
};

std::span<const Command> formkm_rows() {
    return rows;
}

} // namespace quelor
