// Subspace iteration on the model's stiffness and mass: starting vectors, the iteration, its
// reports. Reads .xyz, .node_eqs, eigval_init. Workspace: $ss_kd, $ss_md, $gevec, $gmass,
// $gomega2, $gstif, $work, $kreduce; with -disk the files $ss_korig and $ss_kreduce.
#include "dynamics/eigval.hpp"

#include "dynamics/subspace.hpp"
#include "fem/eqns.hpp"
#include "fem/formkm.hpp"
#include "fem/nodes.hpp"
#include "fem/rigid_modes.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/process_state.hpp"
#include "kernel/project.hpp"
#include "kernel/require.hpp"
#include "kernel/utilities.hpp"
#include "numeric/dense_products.hpp"
#include "solvers/matrix.hpp"

#include <algorithm>
#include <vector>

namespace quelor {

namespace {

// --- starting vectors ----------------------------------------------------------------------------

/// The last number of the random series, which goes on from run to run.
struct RandomState {
    std::int64_t x = 1;
};
std::int64_t& random_state() {
    return process_state<RandomState>().x;
}

void multiply_mass(const Pencil& pencil, Matrix<const double> x, Matrix<double> w) {
    if (pencil.diagonal_mass) return scale_rows(pencil.m, x, w);
    profile_multiply(pencil.m, x, w, pencil.loc);
}

void fill_randomly(const EigvalOptions& options, Matrix<double> x, int first) {
    if (options.seed >= 0) random_state() = options.seed;
    for (int j = first; j <= x.cols; ++j)
        for (double& value : x.col(j))
            value = next_random(random_state());
}

/// Rigid body modes into the first columns; returns the number of columns set.
int start_from_rigid(const EigvalOptions& options, Matrix<double> x) {
    const NodeSet nodes = open_nodes(fe_nodes);
    const auto equations = require_matrix<std::int32_t>(node_eqs);
    const auto [first, last] = options.node_range;
    if (first > last) shutdown_with(" \n\t\tNodal range out of sequence\n");
    int columns = 0;
    for (int mode = 1; nodes && mode <= 6; ++mode)
        if (options.rigid[nth(mode)] != 0 && columns < x.cols)
            rigid_shape(mode, nodes, equations, options.cg, {first, last}, x.col(++columns));
    return columns;
}

/// The user's vectors behind the columns already set, all but the last one at most; returns the
/// number of columns set.
int start_from_user(Matrix<double> x, int columns) {
    const ArrayRef vectors = find_array_2d(eigval_init);
    if (!vectors.is(type_real)) shutdown_with(" /n/tArray eigval_init not found or is wrong type");
    if (vectors.rows() != x.rows) shutdown_with(" /n/tArray eigval_init does not have neq rows");
    const auto from = as_matrix<const double>(vectors);
    for (int j = 1; j <= from.cols && columns < x.cols - 1; ++j)
        std::ranges::copy(from.col(j), x.col(++columns).begin());
    return columns;
}

void set_start(const EigvalOptions& options, std::span<const double> k_diagonal,
               std::span<const double> m_diagonal, Matrix<double> x) {
    int columns = options.has_rigid() ? start_from_rigid(options, x) : 0;
    if (options.start_given) columns = start_from_user(x, columns);
    if (options.random) return fill_randomly(options, x, columns + 1);
    if (!options.has_rigid() && !options.start_given) start_from_mass(m_diagonal, x.col(++columns));
    const int found = start_from_ratios(k_diagonal, m_diagonal, x, columns + 1);
    if (found >= x.cols) return;
    write_both("20(/,'    Only', i5, ' out of', i5, ' starting vectors can be created',/,"
               "                  '    Error in subroutine startv',/)",
               {found, x.cols});
    shutdown();
}

/// Makes column j of x orthonormal to those before it with regard to M; false when it depends on
/// them. The second pass takes out what the rounding of the first has left.
bool orthonormalize_column(const Pencil& pencil, Matrix<double> x, int j, std::span<double> w,
                           std::span<double> components) {
    constexpr double dependent = 1e-8;
    for (int pass = 1;; ++pass) {
        multiply_mass(pencil, {x.col(j).data(), x.rows, 1}, {w.data(), x.rows, 1});
        const double length = scale_to_unit(x.col(j), w);
        if (length == 0 || (pass > 1 && length < dependent)) return false;
        if (pass == 3) return true;
        remove_components(x, j, w, components);
    }
}

/// Makes the columns of x orthonormal with regard to M. Random numbers replace a column that
/// depends on those before it; it becomes zero when there is no further vector.
void orthonormalize(const Pencil& pencil, Matrix<double> x) {
    std::vector<double> w(as_size(x.rows)), components(as_size(x.cols));
    std::int64_t random = 1;
    for (int j = 1; j <= x.cols; ++j) {
        if (orthonormalize_column(pencil, x, j, w, components)) continue;
        for (double& value : x.col(j))
            value = next_random(random);
        if (!orthonormalize_column(pencil, x, j, w, components)) std::ranges::fill(x.col(j), 0.0);
    }
}

// --- the stiffness and its factors ---------------------------------------------------------------

/// Two arrays; with -disk one and the same, into which the contents are read as they are needed.
struct StiffnessPair {
    std::span<double> original, factors;
    bool on_disk = false;
};
constexpr int original_unit = 97, factors_unit = 98;

bool write_file(int unit, std::string_view name, std::span<const double> values) {
    if (fortopen_name(unit, name, "REPLACE", "BINARY") != 0) return false;
    stream_write(unit, values);
    flush_unit(unit);
    return !unit_has_failed(unit);
}
void read_file(int unit, std::span<double> values) {
    rewind_unit(unit);
    if (!stream_read(unit, values)) shutdown_with(" \n\tError on a file of the stiffness\n");
}
void use_original(const StiffnessPair& pair) {
    if (pair.on_disk) read_file(original_unit, pair.original);
}
void use_factors(const StiffnessPair& pair) {
    if (pair.on_disk) read_file(factors_unit, pair.factors);
}
void close_pair(const StiffnessPair& pair) {
    if (!pair.on_disk) return delete_array("$kreduce");
    use_original(pair);
    close_and_delete_unit(original_unit);
    close_and_delete_unit(factors_unit);
}

/// Factors a copy of the stiffness; false when there is no room for it on the disk.
bool open_pair(const Pencil& pencil, StiffnessPair& pair) {
    if (!pair.on_disk) {
        copy_array(kstr, "$kreduce");
        pair.original = pencil.k;
        pair.factors = as_span<double>(find_array("$kreduce"));
        factor_profile(pair.factors, pencil.loc, default_digits);
        return true;
    }
    pair.original = pair.factors = pencil.k;
    if (!write_file(original_unit, "$ss_korig", pencil.k)) {
        close_and_delete_unit(original_unit);
        return false;
    }
    factor_profile(pencil.k, pencil.loc, default_digits);
    if (write_file(factors_unit, "$ss_kreduce", pencil.k)) return true;
    close_pair(pair);
    return false;
}

// --- iteration -----------------------------------------------------------------------------------

struct Times {
    double factor = 0, solve = 0, jacobi = 0;
};

/// Runs an action and adds its time.
template <class Action> void timed(double& sum, Action action) {
    const double start = cpu_seconds();
    action();
    sum += cpu_seconds() - start;
}

/// Mass and stiffness within the space of the columns of x; w is overwritten.
void project(const Pencil& pencil, const StiffnessPair& pair, Matrix<const double> x,
             Matrix<double> w, Matrix<double> mass, Matrix<double> stiffness) {
    multiply_mass(pencil, x, w);
    mat_mult(x, w, mass, true);
    use_original(pair);
    profile_multiply(pair.original, x, w, pencil.loc);
    mat_mult(x, w, stiffness, true);
}

/// One step: x := K^-1 M x, then the modes within the space of its columns. Rounding can leave the
/// mass of nearly dependent columns indefinite; that of orthonormal ones it cannot.
void iterate_once(const EigvalOptions& options, const Pencil& pencil, const StiffnessPair& pair,
                  Matrix<double> x, Matrix<double> w, std::span<double> lambda, Times& times) {
    const int q = x.cols;
    Temporary<double> g_mass("$gmass", q, q), g_stiffness("$gstif", q, q), vectors("$gevec", q, q);
    multiply_mass(pencil, x, w);
    std::ranges::copy(w.all(), x.data);
    use_factors(pair);
    timed(times.solve, [&] { profile_solve(pair.factors, x, pencil.loc, ProfileMode::both); });
    JacobiResult result{.status = JacobiStatus::not_definite};
    for (const bool again : {false, true}) {
        if (result.status != JacobiStatus::not_definite) break;
        if (again) orthonormalize(pencil, x);
        project(pencil, pair, x, w, g_mass.view, g_stiffness.view);
        timed(times.jacobi, [&] {
            result = jacobi_pencil(g_stiffness.view, g_mass.view, vectors.view, lambda, options.tol,
                                   options.maxit);
        });
    }
    report_jacobi(result);
    combine(x, vectors.view, w);
}

/// True when the lowest eigenvalues wanted have all converged; names those that have.
bool report_converged(const EigvalOptions& options, std::span<const double> lambda,
                      std::span<const double> before) {
    std::vector<std::int32_t> list(lambda.size());
    const int count = compare_eigenvalues(lambda, before, options.tol, list);
    list.resize(as_size(count));
    if (count > 0)
        write_both("30(10x, 'Converged eigenvalues:', 9i5, /, (32x, 9i5))",
                   {std::span<const std::int32_t>(list)});
    return std::ranges::count_if(list, [&](int i) { return i <= options.modes; }) == options.modes;
}

/// Iterates until the modes wanted have converged; false when they have not.
bool iterate(const EigvalOptions& options, const Pencil& pencil, const StiffnessPair& pair,
             Matrix<double> x, std::span<double> lambda, Times& times) {
    Temporary<double> w("$work", x.rows, x.cols), before("$gomega2", x.cols, 0);
    for (int step = 1; step <= options.maxit; ++step) {
        write_both("10(10x, 'Subspace iteration', i3)", {step});
        iterate_once(options, pencil, pair, x, w.view, lambda, times);
        if (step > 1 && report_converged(options, lambda, before.view.all())) return true;
        std::ranges::copy(lambda, before.view.data);
    }
    return false;
}

/// The diagonal of a profile matrix.
void copy_diagonal(std::span<const double> a, std::span<const std::int32_t> loc,
                   std::span<double> diagonal) {
    for (std::size_t i = 0; i < diagonal.size(); ++i)
        diagonal[i] = a[nth(loc[i])];
}

/// Rigid body modes are made orthonormal with the vectors behind them: else the first solution
/// makes all columns nearly dependent, as each holds much of the modes of the lowest eigenvalues.
void set_start_vectors(const EigvalOptions& options, const Pencil& pencil, Matrix<double> x) {
    Temporary<double> k_diagonal("$ss_kd", pencil.n, 0), m_diagonal("$ss_md", pencil.n, 0);
    copy_diagonal(pencil.k, pencil.loc, k_diagonal.view.all());
    if (pencil.diagonal_mass)
        std::ranges::copy(pencil.m, m_diagonal.view.data);
    else
        copy_diagonal(pencil.m, pencil.loc, m_diagonal.view.all());
    set_start(options, k_diagonal.view.all(), m_diagonal.view.all(), x);
    if (options.has_rigid()) orthonormalize(pencil, x);
}

} // namespace

bool iterate_subspace(const EigvalOptions& options, const Pencil& pencil, Matrix<double> x,
                      std::span<double> lambda) {
    const double start = cpu_seconds();
    Times times;
    set_start_vectors(options, pencil, x);
    StiffnessPair pair{.original = {}, .factors = {}, .on_disk = options.disk};
    bool ready = false;
    timed(times.factor, [&] { ready = open_pair(pencil, pair); });
    if (!ready) {
        print_both(" \n\tThe stiffness cannot be kept on the disk\n");
        return false;
    }
    const bool converged = iterate(options, pencil, pair, x, lambda, times);
    close_pair(pair);
    if (!converged)
        shutdown_with(" \n\tMaximum number of iterations exceeded - Execution terminating\n");
    write_both("40(10x,     'Time in factorization routine (sec)................', f10.2, /, 10x,"
               "     'Time for backsubstitution (sec)....................', f10.2, /, 10x,"
               "     'Time for Jacobi (sec)..............................', f10.2, /, 10x,"
               "     'Total time for iteration (sec).....................', f10.2)",
               {times.factor, times.solve, times.jacobi, cpu_seconds() - start});
    return true;
}

} // namespace quelor
