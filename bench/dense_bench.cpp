// Speed of the dense commands, as they are typed, against direct calls of BLAS and LAPACK and
// against a plain copy.
//
//     dense_bench [order]      2000 unless given
#include "kernel/command.hpp"
#include "kernel/dbfgen.hpp"
#include "kernel/gencom.hpp"
#include "numeric/lapack.hpp"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

namespace {

using namespace quelor;

/// The shortest of three times.
template <class Prepare, class Action> double seconds(Prepare prepare, Action action) {
    double best = 1e30;
    for (int i = 0; i < 3; ++i) {
        prepare();
        const auto start = std::chrono::steady_clock::now();
        action();
        best = std::min(
            best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    return best;
}

double command_seconds(const char* line, const char* prepare = "") {
    const auto run = [](const char* text) {
        if (!*text) return;
        set_record(text);
        find_command(command_chain(), get_command_word())->run(get_command_word());
    };
    return seconds([&] { run(prepare); }, [&] { run(line); });
}

void report(const char* what, double time, const char* reference, double reference_time) {
    std::printf("%-24s %8.4f s   %-22s %8.4f s   ratio %5.2f\n", what, time, reference,
                reference_time, time / reference_time);
}

void gemm(const char* op, int n, const double* a, const double* b, double* c) {
    const double one = 1, zero = 0;
    dgemm_(op, "N", &n, &n, &n, &one, a, &n, b, &n, &zero, c, &n, 1, 1);
}
void gemm(const char* op, int n, const Complex8* a, const Complex8* b, Complex8* c) {
    const Complex8 one = 1, zero = 0;
    zgemm_(op, "N", &n, &n, &n, &one, a, &n, b, &n, &zero, c, &n, 1, 1);
}
void getrf(int n, double* a, std::int32_t* pivots) {
    std::int32_t info = 0;
    dgetrf_(&n, &n, a, &n, pivots, &info);
}
void getrf(int n, Complex8* a, std::int32_t* pivots) {
    std::int32_t info = 0;
    zgetrf_(&n, &n, a, &n, pivots, &info);
}
double random_number(std::mt19937& random, double) {
    return std::uniform_real_distribution(-1.0, 1.0)(random);
}
Complex8 random_number(std::mt19937& random, Complex8) {
    return {random_number(random, 0.0), random_number(random, 0.0)};
}

template <class T> void bench(const char* type, int n) {
    std::printf("%s, order %d\n", type, n);
    db_clear();
    std::mt19937 random(1);
    const auto a = create_matrix<T>("a", n, n), b = create_matrix<T>("b", n, n);
    std::ranges::generate(a.all(), [&] { return random_number(random, T{}); });
    std::ranges::generate(b.all(), [&] { return random_number(random, T{}); });
    for (int i = 1; i <= n; ++i)
        a(i, i) += 2.0 * n;
    create_matrix<T>("x", n, 1);
    std::vector<T> c(a.all().size());
    std::vector<std::int32_t> pivots(static_cast<std::size_t>(n));
    const auto nothing = [] {};
    report("mult a b c", command_seconds("mult a b c"), "gemm",
           seconds(nothing, [&] { gemm("N", n, a.data, b.data, c.data()); }));
    report("tmult a b c", command_seconds("tmult a b c"), "gemm",
           seconds(nothing, [&] { gemm("T", n, a.data, b.data, c.data()); }));
    const double copy =
        seconds(nothing, [&] { std::memcpy(c.data(), a.data, a.all().size_bytes()); });
    report("add c b", command_seconds("add c b"), "copy of the matrix", copy);
    report("scale c v=1.5", command_seconds("scale c v=1.5"), "copy of the matrix", copy);
    report("mult_elem c b", command_seconds("mult_elem c b"), "copy of the matrix", copy);
    const double lu = seconds([&] { std::ranges::copy(a.all(), c.begin()); },
                              [&] { getrf(n, c.data(), pivots.data()); });
    report("gauss f x", command_seconds("gauss f x", "cp a f"), "getrf", lu);
    report("gauss f x -pp", command_seconds("gauss f x -pp", "cp a f"), "getrf", lu);
    report("invert f g", command_seconds("invert f g", "cp a f"), "getrf", lu);
}

} // namespace

int main(int argc, char** argv) {
    const int n = argc > 1 ? std::atoi(argv[1]) : 2000;
    bench<double>("real", n);
    bench<quelor::Complex8>("complex", n);
}
