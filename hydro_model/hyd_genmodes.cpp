// Change of the modes to assumed ones, {d} = [psi] {u}: d the displacements in the input modes, u
// the generalised displacements.
//
// Command: hyd_genmodes.
// Changes: `hyd_mstr`, `hyd_kstr`, `hyd_cstr`, `.hyd_kf`, the arrays of hyd_modes.hpp.
// Reads: the control parameters, `hyd_psi`. Workspace: `$tmp`.
#include "hydro_model/hyd_input.hpp"
#include "hydro_model/hyd_modes.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/project.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "numeric/dense_products.hpp"

#include <algorithm>

namespace quelor {

namespace {

constexpr std::string_view work = "$tmp";

[[noreturn]] void stop_literal(std::string_view line) {
    write_both("(a)", {line});
    shutdown();
}

// --- symmetry codes

/// Code of the text of a parameter; 0 when it is none.
std::int32_t symmetry_code(int symmetry, std::string_view text) {
    constexpr std::string_view single[] = {"S", "A"};
    constexpr std::string_view twofold[] = {"S/A", "A/S", "S/S", "A/A"};
    const auto names = symmetry == 1 ? std::span<const std::string_view>(single)
                                     : std::span<const std::string_view>(twofold);
    const auto found = std::ranges::find(names, text);
    return found == names.end() ? 0 : static_cast<std::int32_t>(found - names.begin()) + 1;
}

void set_symmetry_codes(int symmetry, int nmode) {
    if (symmetry == 0) return write_both("(a)", {"  Zero symmetry; .hyd_modesym left unchanged"});
    if (symmetry != 1 && symmetry != 2) shutdown_with(" \n\tsymmetry should be 0, 1 or 2\n");
    if (!array_exists(hyd_modesym)) create_matrix<std::int32_t>(hyd_modesym, nmode, 0);
    const ArrayRef modesym = find_array(hyd_modesym);
    if (!modesym.is(type_integer) || modesym.size() != nmode)
        stop_literal("  Dimension of .hyd_modesym .ne. nmode");
    for (int m = 1; m <= nmode; ++m) {
        const std::string number = std::to_string(m);
        std::string text;
        get_char_par(std::string(" ").append(number).append("="), text, 8);
        const auto code = symmetry_code(symmetry, text);
        if (code == 0)
            shutdown_with(std::string(" \n\tSymmetry of mode ").append(number) +
                          " is missing or not valid\n");
        as_span<std::int32_t>(modesym)[nth(m)] = code;
    }
}

// --- transformations

/// A := psi^T A psi, when the array exists. Its message has no leading point.
void transform_matrix(std::string_view name, Matrix<const double> psi) {
    const ArrayRef ref = find_array(name);
    if (!ref) return write_both("('    ', a, ' not found')", {name});
    const std::string_view plain = name.front() == '.' ? name.substr(1) : name;
    if (!ref.is(type_real) || ref.ndim() != 2 || ref.rows() != psi.rows || ref.cols() != psi.rows)
        shutdown_with(" \n\t" + std::string(plain) + " must be (nmode,nmode)\n");
    const auto a = as_matrix<double>(ref);
    const Temporary<double> product(work, psi.rows, psi.cols);
    mat_mult(a, psi, product.view, false);
    mat_mult(psi, product.view, a, true);
    write_both("('    Transformed ', a)", {name});
}

/// The array, which must exist with nmode rows or columns.
Matrix<double> mode_array(std::string_view name, int nmode, bool by_row) {
    const ArrayRef ref = find_array(name);
    if (!ref) shutdown_with(" \n\t" + std::string(name) + " not found\n");
    if (!ref.is(type_real) || ref.ndim() != 2 || (by_row ? ref.rows() : ref.cols()) != nmode)
        shutdown_with(" \n\t" + std::string(name) + " must have nmode " +
                      (by_row ? "rows" : "columns") + "\n");
    return as_matrix<double>(ref);
}

/// A := A psi
void transform_columns(std::string_view name, Matrix<const double> psi) {
    const auto a = mode_array(name, psi.rows, false);
    const Temporary<double> product(work, a.rows, a.cols);
    mat_mult(a, psi, product.view, false);
    std::ranges::copy(product.view.all(), a.data);
}

/// A := psi^T A
void transform_rows(std::string_view name, Matrix<const double> psi) {
    const auto a = mode_array(name, psi.rows, true);
    const Temporary<double> product(work, a.rows, a.cols);
    mat_mult(psi, a, product.view, true);
    std::ranges::copy(product.view.all(), a.data);
}

Matrix<const double> transformation(int nmode) {
    const ArrayRef psi = find_array(hyd_psi);
    if (!psi) {
        not_found(hyd_psi);
        shutdown();
    }
    if (!psi.is(type_real) || psi.ndim() != 2 || psi.rows() != nmode || psi.cols() != nmode)
        shutdown_with(" \n\thyd_psi must be (nmode,nmode)\n");
    return as_matrix<const double>(psi);
}

void cmd_hyd_genmodes(std::string_view) {
    const int nmode = hyd_mode_count();
    set_symmetry_codes(require_int(hyd_symmetry), nmode);
    const auto psi = transformation(nmode);
    for (const auto name : {hyd_mstr, hyd_kstr, hyd_cstr, hyd_kf})
        transform_matrix(name, psi);
    for (const auto name : nodal_mode_arrays)
        transform_columns(name, psi);
    for (const auto name : {hyd_un, hyd_uz})
        transform_rows(name, psi);
}

constexpr Command rows[] = {
    {.words = {"hyd_genmodes"},
     .run = cmd_hyd_genmodes,
     .summary = "transform matrices to generalized coordinates",
     .help = "Command Syntax\n\thyd_genmodes  [1=?/?  2=?/?  ...]\n\n"
             "Transform matrices to generalized coordinates. The input modes are replaced by as "
             "many assumed modes with the matrix hyd_psi(nmode,nmode), which the user defines "
             "before such that {d} = [psi] {u}, where {d} is the displacement vector and {u} the "
             "vector of generalized displacements. For several rigid bodies the assumed modes are "
             "usually symmetric and antisymmetric combinations of the modes of the bodies.\n\n"
             "i=?/?\n\tSymmetry of assumed mode i, for each mode from 1 to nmode, when symmetry "
             "is not 0. Single symmetry: S or A. Double symmetry: S/S, S/A, A/S or A/A, first "
             "for the x-z plane, then for the y-z plane. There is no default.\n\n"
             "The command changes hyd_mstr, hyd_kstr, hyd_cstr (those that exist), .hyd_kf, "
             ".hyd_umx, .hyd_umy, .hyd_umz, .hyd_thx, .hyd_thy, .hyd_thz, .hyd_un, .hyd_uz and "
             ".hyd_modesym. It is used once, after all of them are defined and before "
             "hyd_analysis; a second use transforms again.\n\n"
             "The response given in the file *.cor will be the generalized coordinates. Usually, "
             "one will also want to define a \"modal\" matrix such that the response "
             "corresponding directly to the original modes will be determined by the command "
             "hyd_tf. If no other response components are desired, the modal matrix will be the "
             "same as hyd_psi.\n\n"
             "Example: two modes, the first symmetric\n"
             "\thyd_genmodes 1=S 2=A\n\n"
             "See Also\n\thyd_rigid_modes, hyd_rmass, hyd_flex_modes, hyd_analysis\n"},
};

} // namespace

std::span<const Command> hyd_genmodes_rows() {
    return rows;
}

} // namespace quelor
