// Starting vectors and projections of the subspace iteration.
#include "dynamics/subspace.hpp"

#include "numeric/dense_products.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

namespace quelor {

double next_random(std::int64_t& x) {
    x = (49297 + 9301 * (x % 233280)) % 233280; // the remainder first: no overflow
    return static_cast<double>(x);
}

void start_from_mass(std::span<const double> m_diagonal, std::span<double> column) {
    double largest = 0;
    for (const double m : m_diagonal)
        largest = std::max(largest, std::abs(m));
    for (std::size_t i = 0; i < column.size(); ++i)
        column[i] = largest == 0 ? 0 : m_diagonal[i] / largest;
}

int start_from_ratios(std::span<const double> k_diagonal, std::span<const double> m_diagonal,
                      Matrix<double> x, int first) {
    struct Candidate {
        double ratio;
        int equation;
        auto operator<=>(const Candidate&) const = default;
    };
    std::vector<Candidate> candidates;
    candidates.reserve(m_diagonal.size());
    for (std::size_t i = 0; i < m_diagonal.size(); ++i)
        if (m_diagonal[i] != 0)
            candidates.push_back({k_diagonal[i] / m_diagonal[i], static_cast<int>(i) + 1});
    const int found = static_cast<int>(candidates.size());
    const int needed = x.cols - first + 1;
    if (found < x.cols || needed < 1) return found;
    std::ranges::partial_sort(candidates, candidates.begin() + needed,
                              [](const Candidate& a, const Candidate& b) { return a < b; });
    for (int j = first; j <= x.cols; ++j) {
        std::ranges::fill(x.col(j), 0.0);
        x(candidates[as_size(j - first)].equation, j) = 1;
    }
    return found;
}

void remove_components(Matrix<double> x, int j, std::span<const double> w, std::span<double> c) {
    if (j == 1) return;
    mat_mult(Matrix<const double>{x.data, x.rows, j - 1}, {w.data(), x.rows, 1},
             {c.data(), j - 1, 1}, true);
    subtract_product({x.data, x.rows, j - 1, x.rows}, {c.data(), j - 1, 1, j - 1},
                     {&x(1, j), x.rows, 1, x.rows});
}

double scale_to_unit(std::span<double> x, std::span<double> w) {
    const double length = std::sqrt(std::inner_product(x.begin(), x.end(), w.begin(), 0.0));
    const double factor = 1 / length;
    if (!std::isfinite(factor)) return 0;
    for (double& value : x)
        value *= factor;
    for (double& value : w)
        value *= factor;
    return length;
}

void combine(Matrix<double> x, Matrix<const double> q, Matrix<double> w) {
    mat_mult(Matrix<const double>(x), q, w, false);
    std::ranges::copy(w.all(), x.data);
}

void scale_rows(std::span<const double> d, Matrix<const double> x, Matrix<double> w) {
    for (int j = 1; j <= x.cols; ++j)
        std::ranges::transform(d, x.col(j), w.col(j).begin(), std::multiplies());
}

int compare_eigenvalues(std::span<const double> now, std::span<const double> before, double tol,
                        std::span<std::int32_t> list) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < now.size(); ++i)
        if (std::abs(now[i] - before[i]) <= tol * std::abs(now[i]))
            list[count++] = static_cast<std::int32_t>(i) + 1;
    return static_cast<int>(count);
}

} // namespace quelor
