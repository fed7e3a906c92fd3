// Profile matrices by name.
#include "solvers/matrix.hpp"

#include "kernel/fortfile.hpp"
#include "kernel/project.hpp"
#include "kernel/utilities.hpp"

namespace quelor {

void factor_profile(std::span<double> a, std::span<const std::int32_t> loc, int digits) {
    const ProfileStatus status = profile_factor(a, loc, digits);
    for (const auto& [equation, lost] : status.losses) {
        write_both("35(' WARNING: Number of digits lost in diagonal of ',                    "
                   "'equation',i6,' is', i5)",
                   {equation, lost});
    }
    if (!status.zero_pivot) return;
    write_both("33(//, ' Zero diagonal encountered during ',                    "
               "'matrix factorization - equation ', i6, /)",
               {status.zero_pivot});
    shutdown();
}

void factor_profile(std::span<Complex8> a, std::span<const std::int32_t> loc, int) {
    if (!profile_factor(a, loc).zero_pivot) return;
    print_both(" \n\n\tZero diagonal encountered during matrix factorization\n");
    shutdown();
}

bool profile_op(std::string_view a, std::string_view loc, Matrix<double> b, int op, int digits) {
    const ArrayRef matrix = find_array(a), locations = find_array(loc);
    if (!matrix.is(type_real)) {
        print_both(" \n\tStiffness not found\n");
        return false;
    }
    if (!locations.is(type_integer)) {
        print_both(" \n\tStiffness diagonal locations not found\n");
        return false;
    }
    const auto positions = as_span<const std::int32_t>(locations);
    if (!profile_is_valid(positions, matrix.size()) ||
        (op > 0 && b.rows != static_cast<int>(positions.size()) - 1)) {
        print_both(" \n\tDimensions of arrays not compatible\n");
        return false;
    }
    const auto elements = as_span<double>(matrix);
    if (op == 0)
        factor_profile(elements, positions, digits);
    else
        profile_solve(elements, b, positions, static_cast<ProfileMode>(op - 1));
    return true;
}

} // namespace quelor
