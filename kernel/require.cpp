#include "kernel/require.hpp"

#include "kernel/fortfile.hpp"
#include "kernel/project.hpp"
#include "kernel/utilities.hpp"

#include <cmath>
#include <string>

namespace quelor {

namespace {

bool has_shape(const ArrayRef& ref, std::initializer_list<int> dims) {
    int i = 0;
    for (const int wanted : dims) {
        ++i;
        if (wanted != any_size && ref.dim(i) != wanted) return false;
    }
    for (++i; i <= ref.ndim(); ++i)
        if (ref.dim(i) != 1) return false;
    return true;
}

/// The array, or none after its name has been reported.
ArrayRef find_checked(std::string_view name, TypeCode type, std::initializer_list<int> dims) {
    const ArrayRef ref = find_array(name);
    if (ref && ref.type == type && has_shape(ref, dims)) return ref;
    if (ref)
        print_both(" \n\tArray " + std::string(name) + " is of the wrong type or size\n");
    else
        not_found(name);
    return {};
}

} // namespace

void shutdown_with(std::string_view message) {
    print_both(message);
    shutdown();
}

ArrayRef require_array(std::string_view name, TypeCode type, std::initializer_list<int> dims) {
    const ArrayRef ref = find_checked(name, type, dims);
    if (!ref) shutdown();
    return ref;
}

std::int32_t require_int(std::string_view name) {
    return *static_cast<const std::int32_t*>(
        require_array(name, type_integer, {any_size, any_size}).data);
}

double require_real(std::string_view name) {
    return *static_cast<const double*>(require_array(name, type_real, {any_size, any_size}).data);
}

std::int32_t require_count(std::string_view name, std::int32_t least, std::int32_t most) {
    const std::int32_t n = require_int(name);
    if (least <= n && n <= most) return n;
    shutdown_with(" \n\tArray " + std::string(name) + " holds " + std::to_string(n) +
                  "; it must be a number from " + std::to_string(least) + " to " +
                  std::to_string(most) + "\n");
}

double require_positive(std::string_view name) {
    const double x = require_real(name);
    if (std::isfinite(x) && x > 0) return x;
    write_both("(/, '      Array ', a, ' holds', 1pe12.4, '; it must be greater than 0', /)",
               {name, x});
    shutdown();
}

ArrayRef Inputs::array(std::string_view name, TypeCode type, std::initializer_list<int> dims) {
    const ArrayRef ref = find_checked(name, type, dims);
    if (!ref) complete_ = false;
    return ref;
}

std::int32_t Inputs::integer(std::string_view name) {
    const ArrayRef ref = array(name, type_integer, {any_size, any_size});
    return ref ? *static_cast<const std::int32_t*>(ref.data) : 0;
}

double Inputs::real(std::string_view name) {
    const ArrayRef ref = array(name, type_real, {any_size, any_size});
    return ref ? *static_cast<const double*>(ref.data) : 0;
}

} // namespace quelor
