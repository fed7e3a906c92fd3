// Speed of the profile factorisation, solution and product against the loops over single numbers.
//
//     profile_bench [equations] [mean height]      20000 and 500 unless given
#include "tests/unit/numeric/profile_loops.hpp"

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace {

using namespace quelor;

template <class Action> double seconds(Action action) {
    const auto start = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void report(const char* what, double plain, double kernel) {
    std::printf("%-34s %9.3f s plain %9.3f s  ratio %5.1f\n", what, plain, kernel, plain / kernel);
}

ProfileStatus factor(std::vector<double>& a, const std::vector<std::int32_t>& loc) {
    return profile_factor(a, loc, 7);
}
ProfileStatus factor(std::vector<Complex8>& a, const std::vector<std::int32_t>& loc) {
    return profile_factor(a, loc);
}

template <class T> void bench(const char* type, int n, int height) {
    loops::Random random(1);
    // three equations a node reach up to the same row, which varies by 5 % from node to node
    std::uniform_int_distribution heights(height - height / 20, height + height / 20);
    int top = 0;
    const auto m = loops::random_skyline<T>(n, random, [&](int j) {
        if (j % 3 == 1) top = j - heights(random);
        return j - top;
    });
    auto plain = m, fast = m;
    const std::span<const T> a = m.a;
    std::printf("%s, %d equations, mean height %d\n", type, n, height);
    report("  factor", seconds([&] { plain.factor(); }), seconds([&] { factor(fast.a, m.loc); }));
    if (plain.a != fast.a) std::printf("  THE FACTORS DIFFER\n");
    for (const int cols : {1, 8}) {
        auto b = loops::random_numbers<T>(static_cast<std::size_t>(n * cols), random), x = b, c = b;
        const auto column = [&](int k) {
            return std::span(b).subspan(static_cast<std::size_t>(k * n),
                                        static_cast<std::size_t>(n));
        };
        const double multiply = seconds([&] {
            for (int k = 0; k < cols; ++k)
                plain.product(column(k));
        });
        report(cols == 1 ? "  multiply, 1 column" : "  multiply, 8 columns", multiply, seconds([&] {
                   profile_multiply(a, {b.data(), n, cols}, {c.data(), n, cols}, m.loc);
               }));
        const double solve = seconds([&] {
            for (int k = 0; k < cols; ++k) {
                plain.forward(column(k));
                plain.backward(column(k));
            }
        });
        report(cols == 1 ? "  solve, 1 column" : "  solve, 8 columns", solve, seconds([&] {
                   profile_solve(std::span<const T>(fast.a), {x.data(), n, cols}, m.loc,
                                 ProfileMode::both);
               }));
        if (x != b) std::printf("  THE SOLUTIONS DIFFER\n");
    }
}

} // namespace

int main(int argc, char** argv) {
    const int n = argc > 1 ? std::atoi(argv[1]) : 20000;
    const int height = argc > 2 ? std::atoi(argv[2]) : 500;
    bench<double>("real", n, height);
    bench<quelor::Complex8>("complex", n, height);
}
