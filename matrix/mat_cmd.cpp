// The table of the matrix commands.
#include "dynamics/eigval.hpp"
#include "dynamics/fft.hpp"
#include "kernel/command.hpp"
#include "matrix/algebra.hpp"
#include "matrix/matrix1.hpp"
#include "matrix/matrix2.hpp"
#include "matrix/print.hpp"
#include "solvers/profile_cmd.hpp"

namespace quelor {

// clang-format off
/// One line a family of rows.
static constexpr Family families[] = {
    matrix1_input_rows,
    matrix1_convert_rows,
    matrix1_generate_rows,
    matrix2_copy_rows,
    matrix2_shape_rows,
    matrix2_select_rows,
    algebra_elements_rows,
    algebra_columns_rows,
    algebra_products_rows,
    algebra_solve_rows,
    print_rows,
    profile_rows,
    jacobi_rows,
    eigval_rows,
    fft_rows,
};

/// Words whose commands are not built yet, by family.
static constexpr std::string_view planned[] = {
    "ptosparse", "sparse_matrix_clean", "sparse_mult",
    "arpack",
};
// clang-format on

const CommandTable& mat_cmd() {
    static const CommandTable table{.name = "mat_cmd",
                                    .topic = "matrix",
                                    .heading = "      MATRIX COMMANDS",
                                    .families = families,
                                    .planned = planned};
    return table;
}

} // namespace quelor
