// Time of the subspace iteration, and the part of it that the solves take: a synthetic stiffness of
// a given mean height, diagonal mass. The larger share of the solves, the better the rest.
//
//     eigval_bench [equations] [mean height] [modes]      20000, 300 and 20 unless given
#include "dynamics/eigval.hpp"
#include "fem/eqns.hpp"
#include "fem/formkm.hpp"
#include "kernel/dbfgen.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

namespace {

using namespace quelor;

/// A chain in which every equation is also tied, by weak springs, to those above it in its column.
void make_model(int n, int height) {
    std::mt19937 random(1);
    std::uniform_int_distribution heights(height - height / 5, height + height / 5);
    create_int_scalar(num_eqs, n);
    const auto loc = create_matrix<std::int32_t>(kdiag_loc, n + 1, 0);
    loc(1) = 1;
    for (int j = 1; j <= n; ++j)
        loc(j + 1) = loc(j) + 1 + std::min(j - 1, heights(random));
    const auto k = create_matrix<double>(kstr, loc(n + 1) - 1, 0);
    for (int j = 1; j <= n; ++j) {
        k(loc(j)) += 1e-4;
        for (int at = loc(j) + 1; at < loc(j + 1); ++at) {
            const double spring = at == loc(j) + 1 ? 1 : 1e-4 / height;
            k(at) = -spring;
            k(loc(j)) += spring;
            k(loc(j - (at - loc(j)))) += spring;
        }
    }
    for (double& m : create_matrix<double>(mstr, n, 0).all())
        m = 1;
}

} // namespace

int main(int argc, char** argv) {
    const int n = argc > 1 ? std::atoi(argv[1]) : 20000;
    const int height = argc > 2 ? std::atoi(argv[2]) : 300;
    const std::string modes = argc > 3 ? argv[3] : "20";
    make_model(n, height);
    std::printf("%d equations, mean height %d\n", n, height);
    set_record("eigval #=" + modes + " -random digits=6");
    eigval_rows()[0].run("eigval");
    flush_unit(unit_screen);
}
