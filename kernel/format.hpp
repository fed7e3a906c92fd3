// Fortran formatted output: a format text is parsed into a list of edits (format_parse.hpp), and
// field writers turn one value into text (format_edit.cpp). The rules are those of [ISO 1539-1,
// clause 10]; where it leaves freedom, those of tests/data/format_cases.txt.
#pragma once

#include "kernel/format_parse.hpp"
#include "numeric/types.hpp"

#include <concepts>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace quelor {

/// One output item. A complex value is two real items. A text is not copied: it must live until the
/// write statement has ended.
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

    template <std::integral T> FormatItems& add(T value) {
        items_.push_back({.integer = static_cast<std::int64_t>(value)});
        return *this;
    }
    FormatItems& add(char) = delete; // a number or a text? Say std::string_view(&c, 1)
    FormatItems& add(bool value);
    FormatItems& add(double value);
    FormatItems& add(float value) { return add(static_cast<double>(value)); }
    FormatItems& add(std::string_view text);
    FormatItems& add(const char* text) { return add(std::string_view(text)); }
    FormatItems& add(Complex8 value);
    FormatItems& add(Complex4 value) { return add(Complex8(value)); }
    FormatItems& add(std::span<const std::int32_t> values) { return add_each(values); }
    FormatItems& add(std::span<const double> values) { return add_each(values); }
    FormatItems& add(std::span<const Complex8> values) { return add_each(values); }
    FormatItems& add(std::span<const Complex4> values) { return add_each(values); }

    void reserve(std::size_t n) { items_.reserve(n); }
    std::span<const FormatItem> items() const { return items_; }

private:
    template <class T> FormatItems& add_each(std::span<const T> values) {
        items_.reserve(items_.size() + values.size());
        for (const T& value : values)
            add(value);
        return *this;
    }

    std::vector<FormatItem> items_;
};

/// Refers to its value, which lives to the end of the statement that holds the braced list.
class FormatItems::Argument {
public:
    template <class T>
    Argument(const T& value)
        : value_(&value),
          append_([](FormatItems& items, const void* p) { items.add(*static_cast<const T*>(p)); }) {
    }
    void append_to(FormatItems& items) const { append_(items, value_); }

private:
    const void* value_;
    void (*append_)(FormatItems&, const void*);
};

/// Not constexpr on purpose: a literal that reaches this call does not compile.
void malformed_format_literal(std::string_view complaint);

/// A format text. A literal is checked when the program is compiled; a text made at run time goes
/// through `Format::from_text`, whose `error()` is empty when it is well formed. The text is not
/// copied.
class Format {
public:
    consteval Format(const char* literal) : text_(literal) {
        const std::string_view complaint = check_format(text_);
        if (!complaint.empty()) malformed_format_literal(complaint);
    }
    static Format from_text(std::string_view text) { return {text, check_format(text)}; }
    std::string_view text() const { return text_; }
    std::string_view error() const { return error_; }

private:
    Format(std::string_view text, std::string_view error) : text_(text), error_(error) {}
    std::string_view text_{};
    std::string_view error_{};
};

/// What one write statement leaves: the bytes, ended by a newline unless `$` was passed; on a
/// run-time error (malformed text, type mismatch, no data edit left) what was written up to it,
/// without a newline, and the message. After a statement ended with `$`, column 1 of the next
/// statement's `t` edits is where the line stands, so nothing need be carried over.
struct FormatResult {
    std::string text;
    std::string error;
};
FormatResult format_write(const Format& format, std::span<const FormatItem> items);
inline FormatResult format_write(const Format& format, const FormatItems& items) {
    return format_write(format, items.items());
}

/// Field writers: right-justified text of width w, stars when it does not fit; w = 0 is the
/// shortest field. `scale` is the k of kp.
std::string edit_integer(std::int64_t value, int w);
std::string edit_fixed(double value, int w, int d, int scale = 0);
/// ew.d; as in Fortran, scale = 1 puts one digit before the point and the default none. A scale
/// that d digits do not allow gives stars.
std::string edit_scientific(double value, int w, int d, int scale = 0);
/// aw: the first w characters of a longer text.
std::string edit_text(std::string_view text, int w);

} // namespace quelor
