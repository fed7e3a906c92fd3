// Field writers: one value to one field of text [ISO 1539-1, 10.7].
//
// Digits come from std::to_chars with a precision: the exact binary value correctly rounded, ties
// to even, free of locale. Works on its arguments only.
#include "kernel/format_edit.hpp"

#include "kernel/format.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace quelor {

namespace {

/// Text of bounded length on the stack: 310 digits before the point, and digits and scale after it.
class Body {
public:
    void put(char c) { data_[size_++] = c; }
    void put(std::string_view text) {
        std::copy(text.begin(), text.end(), data_.begin() + static_cast<std::ptrdiff_t>(size_));
        size_ += text.size();
    }
    void put(std::size_t n, char c) {
        std::fill_n(data_.begin() + static_cast<std::ptrdiff_t>(size_), n, c);
        size_ += n;
    }
    char* end() { return data_.data() + size_; }
    char* limit() { return data_.data() + data_.size(); }
    void grow_to(const char* end) { size_ = as_size(end - data_.data()); }
    std::string_view text() const { return {data_.data(), size_}; }

private:
    std::array<char, 310 + 4 * format_digits_limit> data_;
    std::size_t size_ = 0;
};

void append_stars(std::string& out, int w) {
    out.append(as_size(std::max(w, 1)), '*');
}

void append_right(std::string& out, std::string_view text, int w) {
    const auto width = as_size(std::max(w, 0));
    if (width > text.size()) out.append(width - text.size(), ' ');
    out.append(text);
}

char sign_of(bool negative, bool plus) {
    return negative ? '-' : plus ? '+' : '\0';
}

/// Sign and body in a field of w columns; `optional_zero` is a leading zero that may be dropped.
void append_number(std::string& out, char sign, std::string_view body, int w, bool optional_zero) {
    const auto width = as_size(w);
    std::size_t needed = body.size() + (sign ? 1 : 0);
    if (w > 0 && needed > width && optional_zero) {
        body.remove_prefix(1);
        --needed;
    }
    if (w > 0 && needed > width) return append_stars(out, w);
    if (width > needed) out.append(width - needed, ' ');
    if (sign) out.push_back(sign);
    out.append(body);
}

/// NaN, Inf or Infinity, as the width allows.
void append_not_finite(std::string& out, double value, int w, bool plus) {
    const bool nan = std::isnan(value);
    const char sign = nan ? '\0' : sign_of(std::signbit(value), plus);
    const int signs = sign ? 1 : 0;
    if (w > 0 && w < 3 + (sign == '-' ? 1 : 0)) return append_stars(out, w);
    std::string text(w >= 3 + signs || w == 0 ? as_size(signs) : 0, sign);
    text += nan ? "NaN" : w >= 8 + signs ? "Infinity" : "Inf";
    append_right(out, text, w);
}

/// Rounds an exact decimal text "ddd.ddd" to a whole multiple of 10^places; ties to even.
void round_exact(Body& digits, std::string_view exact, std::size_t places) {
    const std::size_t whole = exact.find('.');
    std::string kept("0");
    kept += exact.substr(0, whole > places ? whole - places : 0);
    std::string rest(places > whole ? places - whole : 0, '0');
    rest += exact.substr(whole > places ? whole - places : 0, std::min(whole, places));
    rest += exact.substr(whole + 1);
    const bool beyond_half = rest.find_first_not_of('0', 1) != std::string::npos;
    const bool odd = (kept.back() - '0') % 2 == 1;
    if (rest[0] > '5' || (rest[0] == '5' && (beyond_half || odd))) {
        std::size_t i = kept.size();
        while (kept[--i] == '9')
            kept[i] = '0';
        ++kept[i];
    }
    digits.put(kept);
}

/// Digits of the whole number nearest to magnitude * 10^places, leading zeros possible.
void digits_at(Body& digits, double magnitude, int places) {
    if (places < 0) {
        // to_chars cannot round left of the point, and rounding twice would be wrong: start from
        // the exact expansion, whose last digit is at 10^-1074 at most.
        std::array<char, 1500> exact;
        const auto end = std::to_chars(exact.data(), exact.data() + exact.size(), magnitude,
                                       std::chars_format::fixed, 1074);
        const std::string_view text(exact.data(), as_size(end.ptr - exact.data()));
        return round_exact(digits, text, as_size(-places));
    }
    char* const begin = digits.end();
    char* end =
        std::to_chars(begin, digits.limit(), magnitude, std::chars_format::fixed, places).ptr;
    char* const point = std::find(begin, end, '.');
    if (point != end) end = std::copy(point + 1, end, point);
    digits.grow_to(end);
}

/// `shortest_zero`: a field of no width has its zero before the point too.
void write_fixed(std::string& out, double value, const Edit& edit, FieldMode mode,
                 bool shortest_zero = false) {
    Body digits;
    digits_at(digits, std::fabs(value), edit.d + mode.scale);
    std::string_view text = digits.text();
    text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));

    const auto decimals = as_size(edit.d);
    Body body;
    if (text.size() > decimals) {
        body.put(text.substr(0, text.size() - decimals));
        body.put('.');
        body.put(text.substr(text.size() - decimals));
    } else {
        if (edit.d == 0 || edit.w > 0 || shortest_zero) body.put('0');
        body.put('.');
        body.put(decimals - text.size(), '0');
        body.put(text);
    }
    const bool optional_zero = edit.d > 0 && text.size() <= decimals;
    append_number(out, sign_of(std::signbit(value), mode.plus), body.text(), edit.w, optional_zero);
}

/// `count` significant digits of a magnitude and the power of ten of the first one; 0 for 0.
struct Decimal {
    Body digits;
    int exponent = 0;
};
void to_decimal(Decimal& decimal, double magnitude, int count) {
    char* const begin = decimal.digits.end();
    char* const end = std::to_chars(begin, decimal.digits.limit(), magnitude,
                                    std::chars_format::scientific, count - 1)
                          .ptr;
    char* const mark = std::find(begin, end, 'e');
    std::from_chars(mark[1] == '+' ? mark + 2 : mark + 1, end, decimal.exponent);
    // "d.ddde+xx" becomes "dddd"
    decimal.digits.grow_to(count > 1 ? std::copy(begin + 2, mark, begin + 1) : mark);
}

/// Exponent part; false when it does not fit. `e` is the number of its digits: -1 for the default
/// of two, or three without the letter; 0 for as many as needed.
bool put_exponent(Body& body, int exponent, int e, char letter) {
    std::array<char, 12> buffer;
    const char* const end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(exponent)).ptr;
    const std::string_view digits(buffer.data(), as_size(end - buffer.data()));
    const auto width = as_size(e >= 0 ? e : digits.size() > 2 ? 3 : 2);
    if (width > 0 && digits.size() > width) return false;
    if (e >= 0 || width == 2) body.put(letter);
    body.put(exponent < 0 ? '-' : '+');
    body.put(width > digits.size() ? width - digits.size() : 0, '0');
    body.put(digits);
    return true;
}

/// Digits with `before` of them left of the point (zeros after the point when it is negative).
void append_exponential(std::string& out, const Decimal& decimal, int before, char sign,
                        const Edit& edit) {
    Body body;
    const std::string_view digits = decimal.digits.text();
    const auto left = as_size(std::max(before, 0));
    if (before > 0)
        body.put(digits.substr(0, left));
    else
        body.put('0');
    body.put('.');
    if (before < 0) body.put(as_size(-before), '0');
    body.put(digits.substr(left));
    const bool zero = digits.find_first_not_of('0') == std::string_view::npos;
    if (!put_exponent(body, zero ? 0 : decimal.exponent + 1 - before, edit.e, edit.letter))
        return append_stars(out, edit.w);
    append_number(out, sign, body.text(), edit.w, before <= 0);
}

bool scale_suits(int k, int d) {
    return d == 0 ? k == 1 : k > 0 ? k < d + 2 : -k < d;
}

void write_exponential(std::string& out, double value, const Edit& edit, FieldMode mode) {
    Decimal decimal;
    to_decimal(decimal, std::fabs(value), mode.scale > 0 ? edit.d + 1 : edit.d + mode.scale);
    append_exponential(out, decimal, mode.scale, sign_of(std::signbit(value), mode.plus), edit);
}

/// en: the exponent is a multiple of three, one to three digits stand before the point.
void write_engineering(std::string& out, double value, const Edit& edit, FieldMode mode) {
    const auto digits_before = [](int exponent) { return ((exponent % 3) + 3) % 3 + 1; };
    Decimal probe; // 17 digits tell a power of ten from the value below it
    to_decimal(probe, std::fabs(value), 17);
    int before = digits_before(probe.exponent);
    Decimal decimal;
    to_decimal(decimal, std::fabs(value), before + edit.d);
    if (decimal.exponent != probe.exponent) { // rounded up to the next power of ten
        const int wider = digits_before(decimal.exponent);
        if (wider > before)
            decimal.digits.put('0');
        else
            decimal.digits.grow_to(decimal.digits.end() - (before - wider));
        before = wider;
    }
    append_exponential(out, decimal, before, sign_of(std::signbit(value), mode.plus), edit);
}

/// g: fixed with d significant digits while the value, so rounded, is in [0.1, 10^d); else e.
bool write_general(std::string& out, double value, Edit edit, FieldMode mode) {
    if (edit.w == 0) {
        edit.d = edit.d < 0 ? 17 : edit.d; // enough to read the value back
        edit.e = std::max(edit.e, 0);
    }
    if (edit.d < 0) return false;
    Decimal decimal;
    to_decimal(decimal, std::fabs(value), std::max(edit.d, 1));
    if (edit.d == 0 || decimal.exponent < -1 || decimal.exponent >= edit.d) {
        if (!scale_suits(mode.scale, edit.d)) return false;
        write_exponential(out, value, edit, mode);
        return true;
    }
    const int blanks = edit.w == 0 ? 0 : edit.e < 0 ? 4 : edit.e + 2;
    const int decimals = value == 0 ? edit.d - 1 : edit.d - 1 - decimal.exponent;
    if (edit.w > 0 && edit.w <= blanks) {
        append_stars(out, edit.w);
        return true;
    }
    const std::size_t start = out.size();
    write_fixed(out, value, {.w = edit.w - blanks, .d = decimals}, {.plus = mode.plus}, true);
    out.append(as_size(blanks), out[start] == '*' ? '*' : ' ');
    return true;
}

std::string_view whole_digits(std::array<char, 66>& buffer, std::int64_t value, EditKind kind) {
    // The magnitude in unsigned arithmetic: the lowest integer has no positive counterpart. Bit
    // patterns of negative values are those of the default 32-bit integer where it holds them.
    auto magnitude = static_cast<std::uint64_t>(value);
    int base = 10;
    if (kind == EditKind::integer) {
        magnitude = value < 0 ? 0 - magnitude : magnitude;
    } else {
        base = kind == EditKind::binary ? 2 : kind == EditKind::octal ? 8 : 16;
        if (value < 0 && value >= INT32_MIN) magnitude = static_cast<std::uint32_t>(value);
    }
    char* const end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), magnitude, base).ptr;
    std::transform(buffer.data(), end, buffer.data(),
                   [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
    return {buffer.data(), as_size(end - buffer.data())};
}

} // namespace

void write_whole_field(std::string& out, std::int64_t value, const Edit& edit, FieldMode mode) {
    std::array<char, 66> buffer;
    std::string_view digits = whole_digits(buffer, value, edit.kind);
    if (value == 0 && edit.d == 0) return append_right(out, "", edit.w); // iw.0 of zero is blank
    Body body;
    const auto least = as_size(std::max(edit.d, 1));
    if (least > digits.size()) {
        body.put(least - digits.size(), '0');
        body.put(digits);
        digits = body.text();
    }
    const bool decimal = edit.kind == EditKind::integer;
    const char sign = decimal ? sign_of(value < 0, mode.plus) : '\0';
    append_number(out, sign, digits, edit.w, false);
}

bool write_real_field(std::string& out, double value, const Edit& edit, FieldMode mode) {
    if (edit.kind == EditKind::exponent && !scale_suits(mode.scale, edit.d)) return false;
    if (!std::isfinite(value)) {
        append_not_finite(out, value, edit.w, mode.plus);
        return true;
    }
    switch (edit.kind) {
    case EditKind::fixed:
        write_fixed(out, value, edit, mode);
        return true;
    case EditKind::scientific:
        write_exponential(out, value, edit, {.scale = 1, .plus = mode.plus});
        return true;
    case EditKind::engineering:
        write_engineering(out, value, edit, mode);
        return true;
    case EditKind::general:
        return write_general(out, value, edit, mode);
    default:
        write_exponential(out, value, edit, mode);
        return true;
    }
}

void write_text_field(std::string& out, std::string_view text, int w) {
    append_right(out, w > 0 ? text.substr(0, as_size(w)) : text, w);
}

void write_logical_field(std::string& out, bool value, int w) {
    append_right(out, value ? "T" : "F", w);
}

std::string edit_integer(std::int64_t value, int w) {
    std::string field;
    write_whole_field(field, value, {.kind = EditKind::integer, .w = w}, {});
    return field;
}

std::string edit_fixed(double value, int w, int d, int scale) {
    std::string field;
    write_real_field(field, value, {.kind = EditKind::fixed, .w = w, .d = d}, {.scale = scale});
    return field;
}

std::string edit_scientific(double value, int w, int d, int scale) {
    std::string field;
    if (!write_real_field(field, value, {.kind = EditKind::exponent, .w = w, .d = d},
                          {.scale = scale}))
        append_stars(field, w);
    return field;
}

std::string edit_text(std::string_view text, int w) {
    std::string field;
    write_text_field(field, text, w);
    return field;
}

} // namespace quelor
