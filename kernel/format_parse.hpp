// The parser of Fortran formats, constexpr so that a malformed literal does not compile.
//
// It hands each edit to a sink in the order of the text; groups are a begin and an end edit. The
// letters have either case and blanks outside literals mean nothing. Commas may be left out where
// the text stays unambiguous, as compilers have always allowed; two in a row are an error.
#pragma once

#include "numeric/index.hpp"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quelor {

enum class EditKind : std::uint8_t {
    // data edits: they take an item
    integer,
    binary,
    octal,
    hexadecimal,
    fixed,
    exponent, ///< e and d; the letter written is in `letter`
    scientific,
    engineering,
    general,
    logical,
    text,
    // control edits
    literal,
    skip,     ///< nx, trn: w columns to the right
    tab_left, ///< tln
    tab,      ///< tn
    slash,
    colon,
    dollar,
    scale, ///< kp: w = k
    sign,  ///< s, ss: w = 0; sp: w = 1
    group,
    end_group
};

/// One edit with its repeat count; w, d, e as in `ew.dEe` (m of `iw.m` is d), -1 when absent.
struct Edit {
    EditKind kind{};
    char letter = 'E';
    int repeat = 1;
    int w = -1, d = -1, e = -1;
    std::size_t begin = 0, length = 0; ///< literal: its place in the text, marks excluded
};

constexpr bool takes_item(EditKind kind) {
    return kind <= EditKind::text;
}

/// Largest number that may stand in a format: beyond any line that a device takes, and small enough
/// that a mistyped width cannot exhaust the memory.
inline constexpr int format_number_limit = 100000;
/// The same for digits after the point and of an exponent, and for scale factors.
inline constexpr int format_digits_limit = 1000;

/// Parses one text: `FormatParser(text, sink).error()` calls `sink(const Edit&)` for each edit and
/// is empty, or is the complaint.
template <class Sink> class FormatParser {
public:
    constexpr FormatParser(std::string_view text, Sink& sink) : text_(text), sink_(sink) {
        parse();
    }
    constexpr std::string_view error() const { return error_; }

private:
    constexpr void parse() {
        number(format_number_limit); // a statement label
        if (!accept('(')) return fail("a format begins with a parenthesis");
        int depth = 1;
        bool comma_allowed = false; // not at the start, nor after another comma
        while (depth > 0 && error_.empty()) {
            const char c = peek();
            if (c == '\0') return fail("the closing parenthesis is missing");
            if (c == ',') {
                if (!comma_allowed) return fail("a comma without an edit descriptor before it");
                comma_allowed = false;
                next();
            } else if (c == ')') {
                next();
                if (--depth > 0) emit({.kind = EditKind::end_group});
                comma_allowed = true;
            } else {
                depth += element();
                comma_allowed = last_ != EditKind::group;
            }
        }
    }

    /// One edit or the opening of a group; the change of depth.
    constexpr int element() {
        const char c = peek();
        if (c == '\'' || c == '"') {
            quoted(c);
            return 0;
        }
        if (c == '+' || c == '-') {
            signed_scale();
            return 0;
        }
        const int count = number(format_number_limit);
        if (accept('(')) {
            emit({.kind = EditKind::group, .repeat = repeat_of(count)});
            return 1;
        }
        descriptor(count);
        return 0;
    }

    constexpr void signed_scale() {
        const int sign = next() == '-' ? -1 : 1;
        const int factor = number(format_digits_limit);
        if (factor < 0 || !accept('p'))
            return fail("a signed number is a scale factor and needs a p");
        emit({.kind = EditKind::scale, .w = sign * factor});
    }

    constexpr void descriptor(int count) {
        const char c = next();
        switch (c) {
        case 'p':
            if (count < 0 || count > format_digits_limit)
                return fail("p needs a scale factor before it");
            return emit({.kind = EditKind::scale, .w = count});
        case 'x':
            return moved(EditKind::skip, count < 0 ? 1 : count);
        case 'h':
            return hollerith(count);
        case '/':
            return emit({.kind = EditKind::slash, .repeat = repeat_of(count)});
        case '$':
        case ':':
        case 't':
        case 's':
            if (count >= 0) return fail("a repeat count before $, a colon, t or s");
            return unrepeatable(c);
        default:
            return data_edit(c, {.repeat = repeat_of(count)});
        }
    }

    constexpr void unrepeatable(char c) {
        if (c == '$' || c == ':')
            return emit({.kind = c == '$' ? EditKind::dollar : EditKind::colon});
        if (c == 's') {
            const bool plus = accept('p');
            if (!plus) accept('s');
            return emit({.kind = EditKind::sign, .w = plus ? 1 : 0});
        }
        const EditKind kind = accept('r')   ? EditKind::skip
                              : accept('l') ? EditKind::tab_left
                                            : EditKind::tab;
        moved(kind, number(format_number_limit));
    }

    constexpr void data_edit(char c, Edit edit) {
        switch (c) {
        case 'b':
            if (accept('n') || accept('z')) {
                last_ = EditKind::sign; // bn, bz: blanks of input, nothing in output
                return;
            }
            return whole(edit, EditKind::binary);
        case 'i':
            return whole(edit, EditKind::integer);
        case 'o':
            return whole(edit, EditKind::octal);
        case 'z':
            return whole(edit, EditKind::hexadecimal);
        case 'f':
            return point(edit, EditKind::fixed);
        case 'd':
            edit.letter = 'D';
            return point(edit, EditKind::exponent);
        case 'e':
            if (accept('s')) return point(edit, EditKind::scientific);
            return point(edit, accept('n') ? EditKind::engineering : EditKind::exponent);
        case 'g':
            return point(edit, EditKind::general);
        case 'a':
        case 'l':
            edit.kind = c == 'a' ? EditKind::text : EditKind::logical;
            edit.w = number(format_number_limit);
            if (edit.w == 0 || (c == 'l' && edit.w < 0))
                return fail("a field needs a width above zero");
            return emit(edit);
        default:
            return fail("an unknown edit descriptor");
        }
    }

    /// iw, iw.m and the like.
    constexpr void whole(Edit edit, EditKind kind) {
        edit.kind = kind;
        edit.w = number(format_number_limit);
        if (edit.w < 0) return fail("an integer edit descriptor needs a width");
        if (accept('.')) {
            edit.d = number(format_digits_limit);
            if (edit.d < 0) return fail("a number of digits must follow the point");
            if (edit.w > 0 && edit.d > edit.w) return fail("more digits than the field is wide");
        }
        emit(edit);
    }

    /// fw.d, ew.d, ew.dEe, gw and g0.
    constexpr void point(Edit edit, EditKind kind) {
        edit.kind = kind;
        edit.w = number(format_number_limit);
        if (edit.w < 0) return fail("a real edit descriptor needs a width");
        if (accept('.')) {
            edit.d = number(format_digits_limit);
            if (edit.d < 0) return fail("a number of digits must follow the point");
        } else if (kind != EditKind::general) {
            return fail("a real edit descriptor needs a point and digits");
        }
        if (kind != EditKind::fixed && edit.letter == 'E' && edit.d >= 0 && accept('e')) {
            edit.e = number(format_digits_limit);
            if (edit.e < 0) return fail("the width of the exponent is missing");
        }
        emit(edit);
    }

    constexpr void moved(EditKind kind, int columns) {
        if (columns <= 0) return fail("a position needs a number above zero");
        emit({.kind = kind, .w = columns});
    }

    constexpr void quoted(char mark) {
        const std::size_t begin = ++at_; // peek has passed the blanks before the mark
        while (at_ < text_.size()) {
            if (text_[at_++] != mark) continue;
            if (at_ < text_.size() && text_[at_] == mark) {
                ++at_; // doubled inside
                continue;
            }
            return emit({.kind = EditKind::literal,
                         .letter = mark,
                         .begin = begin,
                         .length = at_ - 1 - begin});
        }
        fail("the quoted text does not end");
    }

    constexpr void hollerith(int count) {
        const auto length = as_size(count < 0 ? 0 : count);
        if (length == 0 || at_ + length > text_.size())
            return fail("h needs the number of its characters");
        emit({.kind = EditKind::literal, .letter = '\0', .begin = at_, .length = length});
        at_ += length;
    }

    constexpr int repeat_of(int count) {
        if (count == 0) fail("a repeat count of zero");
        return count < 0 ? 1 : count;
    }

    /// An unsigned number; -1 when there is none.
    constexpr int number(int limit) {
        int value = -1;
        while (peek() >= '0' && peek() <= '9') {
            value = (value < 0 ? 0 : value * 10) + (next() - '0');
            if (value > limit) {
                fail("a number too large for a format");
                return limit;
            }
        }
        return value;
    }

    /// Next character that is no blank, in lower case; a NUL at the end of the text.
    constexpr char peek() {
        while (at_ < text_.size() && text_[at_] == ' ')
            ++at_;
        if (at_ >= text_.size()) return '\0';
        const char c = text_[at_];
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    constexpr char next() {
        const char c = peek();
        if (at_ < text_.size()) ++at_;
        return c;
    }
    constexpr bool accept(char c) {
        if (peek() != c) return false;
        ++at_;
        return true;
    }

    constexpr void emit(const Edit& edit) {
        if (!error_.empty()) return;
        last_ = edit.kind;
        sink_(edit);
    }
    constexpr void fail(std::string_view complaint) {
        if (error_.empty()) error_ = complaint;
    }

    std::string_view text_;
    Sink& sink_;
    std::size_t at_ = 0;
    std::string_view error_{};
    EditKind last_ = EditKind::group;
};

/// The complaint about a format text; empty when it is well formed.
constexpr std::string_view check_format(std::string_view text) {
    auto ignore = [](const Edit&) {};
    return FormatParser(text, ignore).error();
}

} // namespace quelor
