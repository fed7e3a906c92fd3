// Typed access by name, messages, and the small helpers that every command routine uses.
#pragma once

#include "kernel/dbfgen.hpp"
#include "numeric/complex_modulus.hpp"

namespace quelor {

inline constexpr std::int32_t no_integer = -999999; ///< answer of get_int for a bad name or type
inline constexpr double no_real = -9.99999e-94;     ///< answer of the real getters

/// First element of an integer array. Absent: the not-found line; another type: a message; both
/// then give `no_integer`. The real getters and get_char_by_name do likewise.
std::int32_t get_int(std::string_view name);
double get_real(std::string_view name);
/// Element (i, j), 1-based, by the array's first dimension; i and j are not checked.
double get_real_by_name(std::string_view name, int i, int j);
char get_char_by_name(std::string_view name, int i, int j);

/// "      name not found" on both units.
void not_found(std::string_view name);

/// Character array of dims (1, n + 1) holding the text and a NUL.
char* create_string_array(std::string_view text, std::string_view name);

/// Normalises the `r=`, `c=` pair of an input command to the dims of the array; ndim 0 when the
/// pair is not a shape: r > 0, c > 0: matrix; r = 0, c > 0: row; r > 0, c = 0: vector.
struct Shape {
    int ndim = 0, rows = 0, cols = 0;
};
Shape rc_to_dims(int r, int c);

/// The nearest integer, halves away from zero, and the truncation toward zero; beyond the range of
/// 32 bits the nearest bound, 0 for not-a-number.
std::int32_t nearest_int(double x);
std::int32_t truncated_int(double x);

/// Message through the word-wrapping printer, on the screen and then the output file.
void print_both(std::string_view text);
/// The same on the screen only.
void print_screen(std::string_view text);
/// Characters as they are, no line end, up to the first NUL.
void write_chars(int unit, std::string_view text);
/// Writes by a pattern of letters on both units: I an integer (i8), R a real (1pe13.4), L a line
/// end.
void print_typed_list(std::span<const std::int32_t> integers, std::span<const double> reals,
                      std::string_view pattern);

/// 1-based position of c in the first n characters, 0 if absent; n = -1 scans to the first NUL.
int char_index(std::string_view text, char c, int n);
/// Largest k with 10^k not above |x|; 0 for x = 0.
int exponent10(double x);

struct Point2 {
    double x, y;
};
/// Intersection of the lines p1 p2 and p3 p4; parallel lines are not tested for.
Point2 line_intersect(Point2 p1, Point2 p2, Point2 p3, Point2 p4);

} // namespace quelor
