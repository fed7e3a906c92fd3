// The command `eigval`: options, checks and report; all modes by the Jacobi method, or the lowest
// ones by subspace iteration.
// Reads .#eqs, .kstr, .kdiag_loc, .mstr, .k_status; writes .phi and .omega2 or .omega, and leaves
// .kstr with a shift above 0 added. Workspace: $jac_stiff, $jac_mass, $jac_phip, $lam_temp,
// $subspace, $ss_kshift, and that of the subspace iteration.
#include "dynamics/eigval.hpp"

#include "fem/eqns.hpp"
#include "fem/formkm.hpp"
#include "fem/nodes.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/project.hpp"
#include "kernel/utilities.hpp"
#include "numeric/finite.hpp"
#include "numeric/profile.hpp"

#include <algorithm>
#include <cmath>

namespace quelor {

namespace {

// --- options and checks --------------------------------------------------------------------------

EigvalOptions read_options() {
    EigvalOptions o;
    get_int_par("#=", o.modes);
    get_int_par("maxit=", o.maxit);
    get_int_par("digits=", o.digits);
    get_int_par("ss_size=", o.subspace);
    get_int_par("seed=", o.seed);
    get_int_par("rigid=", o.rigid);
    get_int_par("node_range=", o.node_range);
    get_real_par("shift=", o.shift);
    get_real_par("cg=", o.cg);
    o.start_given = has_flag(" -vec_init");
    o.frequencies = has_flag(" -freq");
    o.disk = has_flag(" -disk");
    o.sparse = has_flag(" -sparse");
    o.random = has_flag(" -random");
    std::int32_t minv = no_integer; // an old key
    get_int_par("minv=", minv);
    if (minv != no_integer)
        print_both(" \nParameter minv is not supported; it has been replaced by ss_size\n");
    if (o.maxit < 1) o.maxit = 30;
    o.tol = tolerance_of(o.digits);
    if (!(o.tol > 0)) o.tol = 1e-5;
    return o;
}

/// Chooses the method for n equations: the dimension of the subspace, 0 for Jacobi.
void choose_method(EigvalOptions& o, int n) {
    if (o.modes < 1 || o.modes >= n) {
        o.modes = n;
        o.subspace = 0;
    } else if (o.subspace > 0) {
        o.subspace = std::clamp(o.subspace, o.modes, n);
    } else {
        const std::int64_t q = std::max(std::int64_t{2} * o.modes, std::int64_t{o.modes} + 8);
        o.subspace = q < n ? static_cast<std::int32_t>(q) : 0;
    }
}

/// The model's matrices; n = 0 after a message when they are not there or do not fit.
Pencil open_pencil(int n) {
    for (const auto name : {kstr, kdiag_loc, mstr})
        if (!find_array(name)) return not_found(name), Pencil{};
    const ArrayRef k = find_array(kstr), loc = find_array(kdiag_loc), m = find_array(mstr);
    if (!k.is(type_real) || !loc.is(type_integer) || loc.size() != std::int64_t{n} + 1 ||
        !profile_is_valid(as_span<const std::int32_t>(loc), k.size()))
        return print_both(" \n\tIncorrect dimensions for .kstr or .kdiag_loc\n"), Pencil{};
    const auto positions = as_span<const std::int32_t>(loc);
    const std::int64_t size = positions.back() - 1;
    if (!m.is(type_real) || (m.size() != size && m.size() != n))
        return print_both(" \n\tIncorrect dimensions for .mstr\n"), Pencil{};
    if (array_exists(k_status) && get_int(k_status) == 1)
        return print_both(" \n\tArray .kstr is factored; form the stiffness again\n"), Pencil{};
    const auto mass = as_span<const double>(m);
    const auto stiffness = as_span<double>(k).first(as_size(size));
    if (!all_finite(stiffness) || !all_finite(mass))
        return print_both(" \n\tNumbers in .kstr or .mstr are not finite\n"), Pencil{};
    return {n, stiffness, positions, mass, m.size() != size};
}

/// True when the arrays that the starting vectors are made from exist, or none are wanted.
bool check_start(const EigvalOptions& o) {
    if (o.subspace == 0 || !o.has_rigid()) return true;
    const ArrayRef equations = find_array(node_eqs);
    if (array_exists(xyz) && equations.is(type_integer) && equations.rows() >= 6) return true;
    print_both(" \n\tArrays .xyz and .node_eqs required for rigid body modes\n");
    return false;
}

// --- report --------------------------------------------------------------------------------------

void report_start(const EigvalOptions& o) {
    if (o.has_rigid())
        write_both("75(10x,     'Rigid body modes as starting vectors....................',6i3, /,"
                   " 10x, 'Point for rigid body modes..............................',1p3e12.4, /,"
                   " 10x, 'Range of nodes for rigid body modes (0 0: all)..........',2i6)",
                   {std::span<const std::int32_t>(o.rigid), std::span<const double>(o.cg),
                    std::span<const std::int32_t>(o.node_range)});
    if (o.start_given) write_both("85(10x, 'Starting vectors in array vec_init will be used')");
}

void report_options(const EigvalOptions& o, int n) {
    const bool jacobi = o.subspace == 0;
    if (jacobi)
        write_both("40(/,5x, 'Eigenvalue Solution by Jacobi Iteration')");
    else
        write_both("30(/,5x, 'Eigenvalue Solution by Subspace Iteration')");
    write_both("50(10x,     'Number of equations.....................................',i6, /,10x,"
               "     'Number of eigenvalues...................................',i6)",
               {n, o.modes});
    if (!jacobi)
        write_both("60(10x,     'Dimension of subspace...................................',i6)",
                   {o.subspace});
    if (!jacobi && o.random)
        write_both("65(10x,     'Use random number seed..................................',i6)",
                   {o.seed});
    write_both("70(10x,     'Maximum number of iterations............................',i6, /, 10x,"
               "     'Convergence tolerance = 10^-exp, where exp is...........',i6, /, 10x,"
               "     'Eigenvalue shift....................................',1pe10.2, /, 10x,"
               "     'Stiffness code..........................................',i6, /, 15x,"
               "     '0 -> profile storage', /, 15x, '1 -> sparse storage', /)",
               {o.maxit, o.digits, o.shift, 0});
    if (!jacobi) report_start(o);
    if (o.frequencies)
        write_both("90(10x, 'Radian natural frequencies will be in array .omega')");
    else
        write_both("100(10x, 'Eigenvalues will be in array .omega2')");
    write_both("110(10x, 'Mass-normalized eigenvectors will be in array .phi',/)");
}

// --- solution ------------------------------------------------------------------------------------

/// K += shift M
void add_shift(const Pencil& p, double shift) {
    if (p.diagonal_mass)
        for (std::size_t i = 0; i < p.m.size(); ++i)
            p.k[nth(p.loc[i])] += shift * p.m[i];
    else
        for (std::size_t i = 0; i < p.k.size(); ++i)
            p.k[i] += shift * p.m[i];
}

/// The upper triangle of a profile matrix into a zero matrix.
void expand_profile(std::span<const double> a, std::span<const std::int32_t> loc,
                    Matrix<double> full) {
    for (int j = 1; j <= full.cols; ++j) {
        const std::int32_t begin = loc[nth(j)], end = loc[as_size(j)];
        for (std::int32_t at = begin; at < end; ++at)
            full(j - (at - begin), j) = a[nth(at)];
    }
}

/// Stores the first columns and values as the modes.
void store_modes(const EigvalOptions& o, Matrix<const double> x, std::span<const double> lambda) {
    const auto phi = create_matrix<double>(mode_shapes, x.rows, o.modes);
    std::copy_n(x.data, phi.all().size(), phi.data);
    const auto values = create_matrix<double>(o.frequencies ? omega : omega2, o.modes, 0);
    std::ranges::copy(lambda.first(as_size(o.modes)), values.data);
}

/// Takes the shift off; the square roots where frequencies are wanted.
void finish_eigenvalues(const EigvalOptions& o, std::span<double> lambda) {
    for (double& value : lambda)
        value -= o.shift;
    clear_negative(lambda);
    if (!o.frequencies) return;
    for (double& value : lambda)
        value = std::sqrt(value);
}

void solve_by_jacobi(const EigvalOptions& o, const Pencil& p) {
    Temporary<double> k("$jac_stiff", p.n, p.n), m("$jac_mass", p.n, p.n);
    expand_profile(p.k, p.loc, k.view);
    if (p.diagonal_mass)
        for (int i = 1; i <= p.n; ++i)
            m.view(i, i) = p.m[nth(i)];
    else
        expand_profile(p.m, p.loc, m.view);
    Temporary<double> phi("$jac_phip", p.n, p.n), lambda("$lam_temp", p.n, 0);
    solve_pencil(k.view, m.view, phi.view, lambda.view.all(), o.tol, o.maxit);
    const auto wanted = lambda.view.all().first(as_size(o.modes));
    finish_eigenvalues(o, wanted);
    store_modes(o, phi.view, wanted);
}

bool solve_by_subspace(const EigvalOptions& o, const Pencil& p) {
    Temporary<double> x("$subspace", p.n, o.subspace), lambda("$lam_temp", o.subspace, 0);
    if (!iterate_subspace(o, p, x.view, lambda.view.all())) return false;
    const auto wanted = lambda.view.all().first(as_size(o.modes));
    finish_eigenvalues(o, wanted);
    store_modes(o, x.view, wanted);
    return true;
}

void cmd_eigval(std::string_view) {
    const double start = cpu_seconds();
    const int n = get_int(num_eqs);
    if (n < 1) return print_both(" \n\tSet .#eqs to the number of equations\n");
    EigvalOptions options = read_options();
    choose_method(options, n);
    if (options.sparse && options.subspace == 0)
        return print_both(" \n\tCannot use Jacobi with sparse stiffness\n");
    if (options.sparse)
        return print_both(" \n\tThe sparse stiffness is not available in this version\n");
    if (!check_start(options)) return;
    const Pencil pencil = open_pencil(n);
    if (pencil.n == 0) return;
    report_options(options, n);
    if (options.shift < 0) copy_array(kstr, "$ss_kshift");
    if (options.shift != 0) add_shift(pencil, options.shift);
    const bool done = options.subspace == 0 ? (solve_by_jacobi(options, pencil), true)
                                            : solve_by_subspace(options, pencil);
    if (options.shift < 0) move_array("$ss_kshift", kstr);
    if (!done) return;
    write_both("10(10x, 'Total time for eigenvalue solution (sec)...........', f10.2,/)",
               {cpu_seconds() - start});
}

constexpr Command rows[] = {
    {.words = {"eigval"},
     .run = cmd_eigval,
     .summary = "natural frequencies and mode shapes",
     .help =
         "Command Syntax\n\teigval [#=?] [maxit=?] [digits=?] [shift=?] [ss_size=?] [rigid=?,?,?,?,?,? cg=?,?,? node_range=?,?] [-vec_init] [-freq] [-disk] [-sparse] [-random] [seed=?]\n\n"
         "Solves K phi = omega^2 M phi for the stiffness and mass of the model, which form_k and form_m have formed: all modes by the generalised Jacobi method on full matrices, or the lowest ones by subspace iteration.\n\n"
         "#\n\tnumber of modes, the lowest; subspace iteration. Default = 0: all modes by the Jacobi method, which also serves when # is so large that the subspace would have all equations.\n"
         "maxit\n\tlargest number of iterations, and of Jacobi sweeps (default = 30)\n"
         "digits\n\tThe tolerance is 10 to the power -digits, for the change of an eigenvalue in an iteration (default = 8).\n"
         "shift\n\tA number that makes K + shift M positive definite when K is singular, as for a free structure; about the lowest omega^2 that is not zero is a good choice. It is taken off the results (default = 0).\n"
         "ss_size\n\tnumber of vectors of the subspace iteration (default = the larger of 2# and # + 8); more vectors take fewer iterations\n"
         "rigid\n\tsix numbers 0 or 1: rigid body modes (surge, sway, heave, roll, pitch, yaw) as starting vectors (default = 0,0,0,0,0,0)\n"
         "cg\n\tpoint about which rigid rotations are taken (default = 0,0,0)\n"
         "node_range\n\tfirst and last node that move in the rigid body modes (default = 0,0: all nodes)\n"
         "-vec_init\n\tstart from the columns of the user's array eigval_init(.#eqs, any number)\n"
         "-freq\n\tradian frequencies omega in .omega instead of omega^2 in .omega2\n"
         "-disk\n\tkeep stiffness and factors on files in turn, which halves the memory for them\n"
         "-sparse\n\tuse the sparse stiffness; not available in this version\n"
         "-random\n\trandom starting vectors\n"
         "seed\n\tseed of the random vectors, 0 or above; below 0 the series of the last run is continued (default = 1)\n\n"
         "The stiffness must not have been factored since it was formed. A shift above 0 stays in .kstr. Without -random or arrays of starting vectors, the iteration starts at the equations with the smallest ratio of stiffness to mass; in a structure with symmetries these may have no part in some of the modes, which are then missed, and -random is safer. The error of a shape is about the root of the tolerance; for more, copy .phi to eigval_init and start a second run from it.\n\n"
         "Created\n\t.phi(.#eqs, #): mode shapes, phi' M phi = 1\n\t.omega2(#) or .omega(#): ascending\n\n"
         "Example\n\tseti .#eqs v=2\n\tinput full r=2 c=2\n\t2 -1\n\t-1 1\n\tftopro full .kstr .kdiag_loc\n\tzero .mstr r=2 v=1\n\teigval -freq\n\tprint .omega\n\t(the lowest ten modes of a model: form_k, form_m, eigval #=10)\n\n"
         "See Also\n\tjacobi, form_k, form_m, rigid_modes\n"},
};

} // namespace

std::span<const Command> eigval_rows() {
    return rows;
}

} // namespace quelor
