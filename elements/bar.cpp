#include "elements/bar.hpp"

namespace quelor {

/// k gets the 3 x 3 block s(i, j) in its diagonal blocks and its negative between the ends.
template <class Block> static void add_bar_blocks(SmallMatrix<6>& k, Block s) {
    for (int j = 1; j <= 3; ++j)
        for (int i = 1; i <= 3; ++i) {
            const double value = s(nth(i), nth(j));
            k(i, j) += value;
            k(i + 3, j + 3) += value;
            k(i, j + 3) -= value;
            k(i + 3, j) -= value;
        }
}

SmallMatrix<6> bar_stiffness(const Vec3& c, double ea_over_length) {
    SmallMatrix<6> k;
    add_bar_blocks(k, [&](auto i, auto j) { return ea_over_length * (c[i] * c[j]); });
    return k;
}

void add_bar_geometric(SmallMatrix<6>& k, const Vec3& c, double force_over_length) {
    // With any two unit vectors q, r normal to c and to each other, q q^T + r r^T = 1 - c c^T.
    add_bar_blocks(
        k, [&](auto i, auto j) { return force_over_length * ((i == j ? 1 : 0) - c[i] * c[j]); });
}

std::array<double, 6> bar_force(const Vec3& c, double tension) {
    return {-tension * c[0], -tension * c[1], -tension * c[2],
            tension * c[0],  tension * c[1],  tension * c[2]};
}

double stretched_tension(double ea, double original_length, double length) {
    return ea / original_length * (length - original_length);
}

double linear_tension(double ea, double original_length, const Vec3& c, const Vec3& u1,
                      const Vec3& u2) {
    return ea * dot_product(difference(u2, u1), c) / original_length;
}

/// One end: its translations in rows row + 1 to row + 3, its node's displacements from column col +
/// 1 on. Returns the number of columns. With an offset the rotation w of the node adds w x offset.
static int connect_end(SmallMatrix<6, 12>& t, int row, int col, const Vec3* offset) {
    for (int i = 1; i <= 3; ++i)
        t(row + i, col + i) = 1;
    if (!offset) return 3;
    const auto [ex, ey, ez] = *offset;
    t(row + 1, col + 5) = ez;
    t(row + 1, col + 6) = -ey;
    t(row + 2, col + 4) = -ez;
    t(row + 2, col + 6) = ex;
    t(row + 3, col + 4) = ey;
    t(row + 3, col + 5) = -ex;
    return 6;
}

BarConnection connect_bar(int code, std::span<const double> offsets) {
    BarConnection c;
    if (code & 1) c.offset1 = {offsets[0], offsets[1], offsets[2]};
    if (code & 2) c.offset2 = {offsets[3], offsets[4], offsets[5]};
    int cols = connect_end(c.t, 0, 0, code & 1 ? &c.offset1 : nullptr);
    cols += connect_end(c.t, 3, cols, code & 2 ? &c.offset2 : nullptr);
    c.t.cols = cols;
    return c;
}

} // namespace quelor
