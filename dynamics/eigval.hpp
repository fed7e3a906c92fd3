// The command `eigval`: natural frequencies and mode shapes of the model.
#pragma once

#include "dynamics/eigval_jacobi.hpp"

#include <array>
#include <string_view>

namespace quelor {

/// real (modes): eigenvalues omega^2, or radian frequencies omega with -freq, ascending. Written by
/// `eigval`.
inline constexpr std::string_view omega2 = ".omega2";
inline constexpr std::string_view omega = ".omega";
/// real (.#eqs, modes): mode shapes, phi^T M phi = I. Written by `eigval`.
inline constexpr std::string_view mode_shapes = ".phi";
/// real (.#eqs, any): the user's starting vectors.
inline constexpr std::string_view eigval_init = "eigval_init";

struct EigvalOptions {
    std::int32_t modes = 0;    ///< wanted
    std::int32_t subspace = 0; ///< vectors of the subspace iteration; 0 for the Jacobi method
    std::int32_t maxit = 30, digits = 8;
    double tol = 0, shift = 0;
    std::array<std::int32_t, 6> rigid{}; ///< rigid body modes as starting vectors
    std::array<double, 3> cg{};
    std::array<std::int32_t, 2> node_range{};
    bool start_given = false, frequencies = false, disk = false, sparse = false, random = false;
    std::int32_t seed = 1;

    bool has_rigid() const { return rigid != std::array<std::int32_t, 6>{}; }
};

/// Stiffness and mass of the model, n equations. They refer to arrays of the store.
struct Pencil {
    int n = 0;
    std::span<double> k;               ///< profile
    std::span<const std::int32_t> loc; ///< n + 1
    std::span<const double> m;         ///< profile, or n values when the mass is diagonal
    bool diagonal_mass = false;
};

/// The lowest modes by subspace iteration, with its reports. Bad starting vectors, a singular
/// stiffness and a run that does not converge take the fatal path.
/// x       out  (n, options.subspace): mode shapes in the first options.modes columns
/// lambda  out  options.subspace values, ascending, those of the stiffness as it stands
/// False, after a message and with nothing changed, when a file of -disk cannot be written.
bool iterate_subspace(const EigvalOptions& options, const Pencil& pencil, Matrix<double> x,
                      std::span<double> lambda);

/// `eigval`
std::span<const Command> eigval_rows();

} // namespace quelor
