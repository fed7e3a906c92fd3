// The generalised Jacobi method. The upper triangles are transformed alone. Row i, which takes part
// in the n - i pairs (i,j) one after the other, stands in a vector meanwhile. The pairs are taken
// in blocks of j, and the columns behind a block get its transformations together: the rows j of a
// block are neighbours in memory, and each element sees the same operations in the same order.
#include "dynamics/jacobif.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>
#include <vector>

namespace quelor {

namespace {

/// The plane transformation of (i,j): column i += cg column j, column j += ca (old column i).
struct Rotation {
    double ca = 0, cg = 0;
};

struct PairRotation : Rotation {
    int j = 0;
};

constexpr int block = 32; ///< pairs
constexpr int lanes = 4;  ///< columns behind a block taken together

/// x, y := x + cg y, y + ca x
void rotate_pairs(Rotation t, double* x, double* y, int n) {
    for (int r = 0; r < n; ++r) {
        const double a = x[r], b = y[r];
        x[r] = a + t.cg * b;
        y[r] = b + t.ca * a;
    }
}

/// A symmetric matrix under transformation, by its upper triangle.
class Triangle {
public:
    explicit Triangle(Matrix<double> a) : a_(a), diagonal_(as_size(a.rows)), row_(as_size(a.rows)) {
        scale();
        for (int i = 1; i <= n(); ++i)
            diagonal(i) = a(i, i);
    }
    int n() const { return a_.rows; }
    int exponent() const { return exponent_; }
    double& diagonal(int i) { return diagonal_[nth(i)]; }
    /// A(i,r) for the row i that has been taken.
    double& row(int r) { return row_[nth(r)]; }
    /// A(i,j)^2/(A(i,i) A(j,j)) for the row i that has been taken.
    double coupling(int i, int j) { return ratio(row(j), i, j); }

    void take_row(int i) {
        std::copy_n(a_.col(i).data(), i - 1, row_.data());
        row(i) = 0;
        for (int j = i + 1; j <= n(); ++j)
            row(j) = a_(i, j);
    }
    void put_row(int i) {
        std::copy_n(row_.data(), i - 1, a_.col(i).data());
        for (int j = i + 1; j <= n(); ++j)
            a_(i, j) = row(j);
    }
    /// Both sides by the transformation of (i,j), but for the columns behind `last`; row i has been
    /// taken.
    void rotate(int i, int j, Rotation t, int last) {
        double* const column = a_.col(j).data();
        rotate_pairs(t, row_.data(), column, i - 1);
        rotate_pairs(t, row_.data() + i, column + i, j - i - 1);
        for (int r = j + 1; r <= last; ++r)
            rotate_pairs(t, &row(r), &a_(j, r), 1);
        const double ii = diagonal(i), jj = diagonal(j), ij = row(j);
        diagonal(i) = ii + t.cg * (2 * ij + t.cg * jj);
        diagonal(j) = jj + t.ca * (2 * ij + t.ca * ii);
        // Not simply 0: where the pair is nearly dependent, ca and cg carry more than rounding.
        row(j) = ij * (1 + t.ca * t.cg) + t.ca * ii + t.cg * jj;
    }
    /// A block's transformations of the columns behind `last`.
    void rotate_behind(std::span<const PairRotation> rotations, int last) {
        int r = last + 1;
        for (; r + lanes - 1 <= n(); r += lanes)
            rotate_columns<lanes>(rotations, r);
        for (; r <= n(); ++r)
            rotate_columns<1>(rotations, r);
    }
    /// Whether all couplings lie within the limit.
    bool uncoupled(double limit) {
        for (int j = 2; j <= n(); ++j)
            for (int i = 1; i < j; ++i)
                if (ratio(a_(i, j), i, j) > limit) return false;
        return true;
    }
    /// Back to the array, both triangles, and to its scale.
    void put_back() {
        for (int j = 1; j <= n(); ++j) {
            for (int i = 1; i < j; ++i)
                a_(i, j) = a_(j, i) = std::scalbn(a_(i, j), exponent_);
            a_(j, j) = std::scalbn(diagonal(j), exponent_);
        }
    }

private:
    template <int count> void rotate_columns(std::span<const PairRotation> rotations, int first) {
        double x[count], *column[count];
        for (int q = 0; q < count; ++q) {
            x[q] = row(first + q);
            column[q] = a_.col(first + q).data() - 1;
        }
        for (const PairRotation& t : rotations)
            for (int q = 0; q < count; ++q)
                rotate_pairs(t, &x[q], &column[q][t.j], 1);
        for (int q = 0; q < count; ++q)
            row(first + q) = x[q];
    }
    // Divided one by one, so that neither product leaves the range of numbers.
    double ratio(double x, int i, int j) { return x / diagonal(i) * (x / diagonal(j)); }
    /// Divides by a power of two, exactly, so that fourth powers stay in range.
    void scale() {
        double largest = 0;
        for (int j = 1; j <= n(); ++j)
            for (int i = 1; i <= j; ++i)
                largest = std::max(largest, std::abs(a_(i, j)));
        if (largest == 0) return;
        exponent_ = std::ilogb(largest);
        for (int j = 1; j <= n(); ++j)
            for (int i = 1; i <= j; ++i)
                a_(i, j) = std::scalbn(a_(i, j), -exponent_);
    }

    Matrix<double> a_;
    std::vector<double> diagonal_, row_;
    int exponent_ = 0;
};

bool is_finite(const Matrix<double>& a) {
    for (int j = 1; j <= a.cols; ++j)
        for (int i = 1; i <= j; ++i)
            if (!std::isfinite(a(i, j))) return false;
    return true;
}

JacobiStatus check_diagonals(const Matrix<double>& k, const Matrix<double>& m) {
    for (int i = 1; i <= k.rows; ++i) {
        if (k(i, i) < 0) return JacobiStatus::negative_stiffness;
        if (m(i, i) <= 0) return JacobiStatus::nonpositive_mass;
    }
    return JacobiStatus::converged;
}

/// The transformation that makes K(i,j) and M(i,j) zero; row i has been taken. False when the
/// matrices are not positive definite.   Source: [Bathe 1976, sec. 11.3.2]
bool make_rotation(Triangle& k, Triangle& m, int i, int j, Rotation& t) {
    const double kii = k.diagonal(i), kjj = k.diagonal(j), kij = k.row(j);
    const double mii = m.diagonal(i), mjj = m.diagonal(j), mij = m.row(j);
    const double ak = kii * mij - mii * kij, ag = kjj * mij - mjj * kij;
    const double b = kii * mjj - kjj * mii, d = b * b / 4 + ak * ag;
    // d = 0 where the pair's blocks of K and M are proportional, and rounding leaves it with either
    // sign. What decouples them then makes one matrix diagonal, and the other one very nearly so.
    constexpr double eps = 4 * std::numeric_limits<double>::epsilon();
    const double b_error = eps * (std::abs(kii * mjj) + std::abs(kjj * mii));
    const double ak_error = eps * (std::abs(kii * mij) + std::abs(mii * kij));
    const double ag_error = eps * (std::abs(kjj * mij) + std::abs(mjj * kij));
    const double d_error =
        (std::abs(b) / 2 + b_error) * b_error + std::abs(ak) * ag_error + std::abs(ag) * ak_error;
    if (std::abs(d) <= d_error) {
        t.ca = 0;
        t.cg = kjj == 0 ? -mij / mjj : -kij / kjj;
        return true;
    }
    if (d < 0) return false; // never where the pair's block of M is definite: two real roots
    const double x = b / 2 + std::copysign(std::sqrt(d), b < 0 ? -1.0 : 1.0);
    t.ca = ag / x;
    t.cg = -ak / x;
    return true;
}

struct Sweep {
    bool definite = true;
    std::int64_t rotations = 0;
};

/// The pairs (i, first..last); false when the matrices are not definite.
bool sweep_block(Triangle& k, Triangle& m, Matrix<double> phi, double threshold, int i, int first,
                 int last, std::int64_t& rotations) {
    PairRotation list[block];
    int count = 0;
    for (int j = first; j <= last; ++j) {
        if (!(k.coupling(i, j) > threshold || m.coupling(i, j) > threshold)) continue;
        PairRotation& t = list[count++];
        t.j = j;
        if (!make_rotation(k, m, i, j, t)) return false;
        k.rotate(i, j, t, last);
        m.rotate(i, j, t, last);
        rotate_pairs(t, phi.col(i).data(), phi.col(j).data(), phi.rows);
    }
    k.rotate_behind({list, as_size(count)}, last);
    m.rotate_behind({list, as_size(count)}, last);
    rotations += count;
    return true;
}

Sweep sweep_pairs(Triangle& k, Triangle& m, Matrix<double> phi, double threshold) {
    Sweep sweep;
    for (int i = 1; i < k.n(); ++i) {
        k.take_row(i);
        m.take_row(i);
        for (int j = i + 1; j <= k.n() && sweep.definite; j += block)
            sweep.definite = sweep_block(k, m, phi, threshold, i, j, std::min(j + block - 1, k.n()),
                                         sweep.rotations);
        if (!sweep.definite) break;
        k.put_row(i);
        m.put_row(i);
    }
    return sweep;
}

/// lambda(i) := K(i,i)/M(i,i); true when none has changed by more than tol of itself.
bool renew_eigenvalues(Triangle& k, Triangle& m, std::span<double> lambda, double tol) {
    bool close = true;
    for (int i = 1; i <= k.n(); ++i) {
        double& value = lambda[nth(i)];
        const double old = std::exchange(value, k.diagonal(i) / m.diagonal(i));
        if (!(std::abs(value - old) <= value * tol)) close = false;
    }
    return close;
}

/// Couplings that the last threshold passed over, up to tol^2, are taken out: phi is then
/// orthonormal to rounding and not only to tol.
JacobiResult polish(Triangle& k, Triangle& m, Matrix<double> phi, std::span<double> lambda,
                    int sweeps) {
    if (!sweep_pairs(k, m, phi, 1e-26).definite) return {JacobiStatus::not_definite, sweeps};
    renew_eigenvalues(k, m, lambda, 0);
    return {JacobiStatus::converged, sweeps};
}

JacobiResult run_sweeps(Triangle& k, Triangle& m, Matrix<double> phi, std::span<double> lambda,
                        double tol, int maxit) {
    renew_eigenvalues(k, m, lambda, tol);
    for (int s = 1;; ++s) {
        const double threshold = std::pow(10.0, -4.0 * s);
        const Sweep sweep = sweep_pairs(k, m, phi, threshold);
        if (!sweep.definite) return {JacobiStatus::not_definite, s};
        const bool close = renew_eigenvalues(k, m, lambda, tol);
        if (close && k.uncoupled(tol * tol) && m.uncoupled(tol * tol))
            return polish(k, m, phi, lambda, s);
        if (s >= maxit) return {JacobiStatus::maximum_sweeps, s};
        // No later sweep would change anything.
        if (threshold == 0 && sweep.rotations == 0) return {JacobiStatus::maximum_sweeps, maxit};
    }
}

/// Eigenvalues and columns of phi in the given scale, phi^T M phi = I.
JacobiStatus normalise(Triangle& k, Triangle& m, Matrix<double> phi, std::span<double> lambda) {
    for (int i = 1; i <= m.n(); ++i) {
        if (m.diagonal(i) <= 0) return JacobiStatus::not_definite;
        double& value = lambda[nth(i)];
        value = std::scalbn(value, k.exponent() - m.exponent());
        const double mass = std::scalbn(m.diagonal(i), m.exponent()), factor = 1 / std::sqrt(mass);
        if (!std::isfinite(value) || !std::isfinite(factor)) return JacobiStatus::not_finite;
        for (double& x : phi.col(i))
            x *= factor;
    }
    return JacobiStatus::converged;
}

/// Eigenvalues ascending, the columns of phi with them.
void sort_modes(Matrix<double> phi, std::span<double> lambda) {
    std::vector<int> mapping(lambda.size()); // mapping[i]: the column, from 0, that goes to i
    std::iota(mapping.begin(), mapping.end(), 0);
    std::ranges::stable_sort(mapping, {}, [&](int i) { return lambda[as_size(i)]; });
    for (int start = 0; start < phi.cols; ++start) {
        // The cycle that begins at start, by exchanges of neighbours in it.
        for (int to = start;;) {
            const int from = std::exchange(mapping[as_size(to)], to);
            if (from == start || from == to) break;
            std::swap(lambda[as_size(to)], lambda[as_size(from)]);
            std::ranges::swap_ranges(phi.col(to + 1), phi.col(from + 1));
            to = from;
        }
    }
}

void set_identity(Matrix<double> a) {
    std::ranges::fill(a.all(), 0.0);
    for (int i = 1; i <= a.rows; ++i)
        a(i, i) = 1;
}

} // namespace

JacobiResult jacobi_pencil(Matrix<double> k, Matrix<double> m, Matrix<double> phi,
                           std::span<double> lambda, double tol, int maxit) {
    if (!is_finite(k) || !is_finite(m)) return {JacobiStatus::not_finite, 0};
    if (const auto status = check_diagonals(k, m); has_failed(status)) return {status, 0};
    set_identity(phi);
    Triangle stiffness(k), mass(m);
    JacobiResult result = run_sweeps(stiffness, mass, phi, lambda, tol, maxit);
    if (has_failed(result.status)) return result;
    if (const auto status = normalise(stiffness, mass, phi, lambda); has_failed(status))
        return {status, result.sweeps};
    sort_modes(phi, lambda);
    stiffness.put_back();
    mass.put_back();
    return result;
}

} // namespace quelor
