// Typed access by name, messages, and the small helpers of every command routine.
#include "kernel/utilities.hpp"

#include "kernel/fortfile.hpp"
#include "kernel/help_print.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace quelor {

namespace {

constexpr int no_paging = 999999; // page length of messages: they never stop

/// The array when it is of type T; otherwise null data, after the message of the caller.
template <class T> Matrix<const T> typed_array(std::string_view name, std::string_view bad_type) {
    const ArrayRef ref = db_find(name);
    if (!ref) {
        not_found(name);
        return {};
    }
    if (ref.type != type_code<T>) {
        print_both(bad_type);
        return {};
    }
    return as_matrix<const T>(ref);
}

/// Element (i, j) by the first dimension alone; i and j are the caller's affair.
template <class T> T element(const Matrix<const T>& array, int i, int j) {
    return array.data[(i - 1) + std::ptrdiff_t{j - 1} * array.rows];
}

/// Converts a number whose fraction has been dealt with; out of range gives the nearest bound.
std::int32_t saturated(double whole) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (std::isnan(whole)) return 0;
    return static_cast<std::int32_t>(
        std::clamp(whole, double{Limits::min()}, double{Limits::max()}));
}

std::string_view up_to_nul(std::string_view text) {
    return text.substr(0, text.find('\0'));
}

void print_on(int unit, std::string_view text) {
    int lines = 0;
    wrap_print(unit, text, lines, no_paging);
}

} // namespace

std::int32_t get_int(std::string_view name) {
    const auto array = typed_array<std::int32_t>(name, " \n\tIncorrect type in get_int\n");
    return array ? *array.data : no_integer;
}

double get_real(std::string_view name) {
    const auto array = typed_array<double>(name, " \n\tIncorrect type in get_real\n");
    return array ? *array.data : no_real;
}

double get_real_by_name(std::string_view name, int i, int j) {
    const auto array = typed_array<double>(name, " \n\tIncorrect type in get_real_by_name\n");
    return array ? element(array, i, j) : no_real;
}

char get_char_by_name(std::string_view name, int i, int j) {
    const auto array = typed_array<char>(name, " \n\tIncorrect type in get_char_by_name\n");
    return array ? element(array, i, j) : '\0';
}

void not_found(std::string_view name) {
    const std::string line = "      " + std::string(up_to_nul(name)) + " not found\n";
    write_text(unit_screen, line);
    write_text(unit_output, line);
}

char* create_string_array(std::string_view text, std::string_view name) {
    const std::string own(up_to_nul(text)); // the view may lie in the array that is replaced
    const auto length = static_cast<std::int32_t>(own.size());
    auto* const data = static_cast<char*>(create_array(type_character, name, {1, length + 1}));
    std::memcpy(data, own.c_str(), own.size() + 1);
    return data;
}

Shape rc_to_dims(int r, int c) {
    if (r > 0 && c > 0) return {2, r, c};
    if (r == 0 && c > 0) return {2, 1, c};
    if (r > 0 && c == 0) return {1, r, 1};
    return {0, r, c};
}

std::int32_t nearest_int(double x) {
    return saturated(std::trunc(x < 0 ? x - 0.5 : x + 0.5));
}

std::int32_t truncated_int(double x) {
    return saturated(std::trunc(x));
}

void print_both(std::string_view text) {
    print_on(unit_screen, text);
    print_on(unit_output, text);
}

void print_screen(std::string_view text) {
    print_on(unit_screen, text);
}

void write_chars(int unit, std::string_view text) {
    write_text(unit, up_to_nul(text));
}

void print_typed_list(std::span<const std::int32_t> integers, std::span<const double> reals,
                      std::string_view pattern) {
    std::size_t next_integer = 0, next_real = 0;
    for (const char letter : pattern) {
        if (letter == 'I' && next_integer < integers.size()) {
            write_both("(i8, $)", {integers[next_integer++]});
        } else if (letter == 'R' && next_real < reals.size()) {
            write_both("(1pe13.4, $)", {reals[next_real++]});
        } else if (letter == 'L') {
            write_text(unit_screen, "\n");
            write_text(unit_output, "\n");
        }
    }
}

int char_index(std::string_view text, char c, int n) {
    const auto scanned = n == -1 ? up_to_nul(text) : text.substr(0, as_size(std::max(n, 0)));
    const auto position = scanned.find(c);
    return position == std::string_view::npos ? 0 : static_cast<int>(position) + 1;
}

int exponent10(double x) {
    if (x == 0 || !std::isfinite(x)) return 0;
    const double magnitude = std::abs(x);
    int k = static_cast<int>(std::log10(magnitude)); // truncation: one too high for most |x| < 1
    if (magnitude < 1 && std::pow(10.0, k) > magnitude) --k;
    return k;
}

Point2 line_intersect(Point2 p1, Point2 p2, Point2 p3, Point2 p4) {
    // Cramer's rule on  n12 . p = n12 . p1,  n34 . p = n34 . p3,  n the normals of the lines.
    const double a1 = p2.y - p1.y, b1 = p1.x - p2.x, c1 = a1 * p1.x + b1 * p1.y;
    const double a2 = p4.y - p3.y, b2 = p3.x - p4.x, c2 = a2 * p3.x + b2 * p3.y;
    const double determinant = a1 * b2 - a2 * b1;
    return {(c1 * b2 - c2 * b1) / determinant, (a1 * c2 - a2 * c1) / determinant};
}

} // namespace quelor
