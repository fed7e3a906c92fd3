// Look-ups of arrays without which a command cannot go on. An absent, mistyped or misshapen array
// is named on both units; then the program takes the fatal path (`require_...`) or the command ends
// (`Inputs`).
#pragma once

#include "kernel/dbfgen.hpp"

namespace quelor {

/// The message on both units, then the fatal path.
[[noreturn]] void shutdown_with(std::string_view message);

inline constexpr int any_size = -1;

/// The array `name` of the given type and dimensions (any_size: any); dims beyond those given count
/// as 1 when absent.
ArrayRef require_array(std::string_view name, TypeCode type, std::initializer_list<int> dims);
std::int32_t require_int(std::string_view name);
double require_real(std::string_view name);
/// The same where only part of the numbers has a meaning; any other, which a user may have put into
/// the array, is named and ends the program likewise.
std::int32_t require_count(std::string_view name, std::int32_t least, std::int32_t most);
double require_positive(std::string_view name);

template <class T>
Matrix<const T> require_matrix(std::string_view name, int rows = any_size, int cols = any_size) {
    return as_matrix<const T>(require_array(name, type_code<T>, {rows, cols}));
}
template <class T> std::span<const T> require_vector(std::string_view name, int n = any_size) {
    return as_span<const T>(require_array(name, type_code<T>, {n, 1}));
}

/// The inputs of a command that ends, with nothing changed, when one of them does not serve. Every
/// one that is asked for and does not serve is named; the object is then false, and the view that
/// was asked for empty.
///     Inputs inputs;
///     const auto addm = inputs.array3<double>(hyd_addm, nmode, nmode, nfreq);
///     const double g = inputs.real(hyd_grav);
///     if (!inputs) return;
class Inputs {
public:
    ArrayRef array(std::string_view name, TypeCode type, std::initializer_list<int> dims);
    std::int32_t integer(std::string_view name);
    double real(std::string_view name);

    template <class T>
    Matrix<const T> matrix(std::string_view name, int rows = any_size, int cols = any_size) {
        const ArrayRef ref = array(name, type_code<T>, {rows, cols});
        return ref ? as_matrix<const T>(ref) : Matrix<const T>{};
    }
    template <class T> std::span<const T> vector(std::string_view name, int n = any_size) {
        const ArrayRef ref = array(name, type_code<T>, {n, 1});
        return ref ? as_span<const T>(ref) : std::span<const T>{};
    }
    template <class T>
    Array3<const T> array3(std::string_view name, int n1 = any_size, int n2 = any_size,
                           int n3 = any_size) {
        const ArrayRef ref = array(name, type_code<T>, {n1, n2, n3});
        return ref ? as_array3<const T>(ref) : Array3<const T>{};
    }

    explicit operator bool() const { return complete_; }

private:
    bool complete_ = true;
};

} // namespace quelor
