// Fortran formatted output: a format text is parsed into a list of edits, and field writers turn
// one value into text. Clauses cited are those of ISO/IEC 1539-1:2010, chapter 10.
#pragma once

#include "kernel/types.hpp"

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace quelor {

/// One output item. A complex value is two real items.
struct FormatItem {
    enum class Kind : std::uint8_t { integer, real, text, logical };
    Kind kind = Kind::integer;
    std::int64_t integer = 0;
    double real = 0;
    std::string_view text{};
};

/// The items of one write statement, in order; built from numbers, texts, complex values and spans.
class FormatItems {
public:
    /// One argument of a braced list: stands for one or more items.
    class Argument;
    FormatItems() = default;
    FormatItems(std::initializer_list<Argument> arguments);

    FormatItems& add(std::int32_t value);
    FormatItems& add(std::int64_t value);
    FormatItems& add(double value);
    FormatItems& add(float value);
    FormatItems& add(bool value);
    FormatItems& add(std::string_view text);
    FormatItems& add(const char* text) { return add(std::string_view(text)); }
    FormatItems& add(Complex8 value);
    FormatItems& add(std::span<const std::int32_t> values);
    FormatItems& add(std::span<const double> values);
    FormatItems& add(std::span<const Complex8> values);

    std::span<const FormatItem> items() const { return items_; }

private:
    std::vector<FormatItem> items_;
};

class FormatItems::Argument {
public:
    template <class T> Argument(const T& value) { expanded_.add(value); }
    std::span<const FormatItem> items() const { return expanded_.items(); }

private:
    FormatItems expanded_;
};

/// A format text. A literal is checked when the program is compiled; a text made at run time goes
/// through `Format::from_text`, whose `error()` is empty when it is well formed.
class Format {
public:
    consteval Format(const char* literal) : text_(literal) {}
    static Format from_text(std::string_view text);
    std::string_view text() const { return text_; }
    std::string_view error() const { return error_; }

private:
    constexpr Format() = default;
    std::string_view text_{};
    std::string_view error_{};
};

/// What one write statement leaves: the bytes, ended by a newline unless `$` was passed; on a
/// run-time error (type mismatch, no data edit left) what was written up to it and the message.
struct FormatResult {
    std::string text;
    std::string error;
};
/// `column`: where the line stands when the last statement ended with `$`, for `t` edits; 0 at a
/// line start.
FormatResult format_write(const Format& format, std::span<const FormatItem> items, int column = 0);

/// Field writers: right-justified text of width w, stars when it does not fit.
std::string edit_integer(std::int64_t value, int w);
std::string edit_fixed(double value, int w, int d, int scale = 0);
std::string edit_scientific(double value, int w, int d, int scale = 0);
std::string edit_text(std::string_view text, int w);

} // namespace quelor
