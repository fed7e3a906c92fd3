// Field writers behind the format engine: each appends one field to a text.
#pragma once

#include "kernel/format_parse.hpp"

#include <string>

namespace quelor {

/// What the edits before it leave in force for a field.
struct FieldMode {
    int scale = 0;     ///< k of kp
    bool plus = false; ///< sp: a plus sign before positive values
};

/// i, b, o, z: `edit.d` is the least number of digits (-1: one).
void write_whole_field(std::string& out, std::int64_t value, const Edit& edit, FieldMode mode);
/// f, e, d, es, en, g. False when the scale factor does not suit the digits, and nothing is
/// written.
bool write_real_field(std::string& out, double value, const Edit& edit, FieldMode mode);
/// a; without a width (`w` below 1) the text as it is.
void write_text_field(std::string& out, std::string_view text, int w);
/// l: T or F, right-justified.
void write_logical_field(std::string& out, bool value, int w);

} // namespace quelor
