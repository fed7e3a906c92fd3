// The subspace iteration from vectors of the user.
#include "../support/session.hpp"

#include "dynamics/eigval.hpp"
#include "fem/eqns.hpp"
#include "fem/formkm.hpp"

namespace quelor {

using StartVectors = Session;

// K = diag(1, 2, ...), M = 1: the unit vectors are the modes, and the iteration leaves none of
// them. The last column is never the user's: the smallest stiffness for its mass takes it.
TEST_F(StartVectors, of_the_user_leave_the_last_column_to_the_softest_equation) {
    const int n = 12;
    create_int_scalar(num_eqs, n);
    const auto loc = create_matrix<std::int32_t>(kdiag_loc, n + 1, 0);
    const auto k = create_matrix<double>(kstr, n, 0), m = create_matrix<double>(mstr, n, 0);
    const auto start = create_matrix<double>(eigval_init, n, 4);
    for (int i = 1; i <= n; ++i)
        loc(i + 1) = 1 + (loc(i) = i), k(i) = i, m(i) = 1;
    for (int j = 1; j <= 4; ++j)
        start(j + 1, j) = 1;
    type("eigval #=2 ss_size=4 -vec_init");
    EXPECT_DOUBLE_EQ(as_matrix<double>(find_array(omega2))(1), 1);
    EXPECT_DOUBLE_EQ(as_matrix<double>(find_array(omega2))(2), 2);
}

} // namespace quelor
