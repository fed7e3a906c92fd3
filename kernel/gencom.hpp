// The current input record: reading it, and asking it for arguments, parameters and values.
//
// Parsing never fails: an absent key leaves the caller's value (so the default is what stands there
// before), a bad number reads as 0. A data record replaces the command line, so a routine takes all
// its arguments and parameters before it reads one.
#pragma once

#include "numeric/types.hpp"

#include <string>
#include <string_view>

namespace quelor {

inline constexpr std::size_t record_limit = 2048; ///< bytes of a record, continuation lines joined
inline constexpr std::size_t word_length = 32;    ///< a command word is cut to this

/// Reads one logical record; with `echo` copies it to the output file behind `echo_prefix`.
void read_record(std::string_view prompt, std::string_view echo_prefix, bool echo);
/// Reads a data record; nothing goes to the output file.
void next_record(std::string_view prompt);
/// The record without leading blanks and comment.
std::string_view record_text();
/// Makes `text` the current record, as if it had been read (tests, and commands made from code).
void set_record(std::string_view text);

/// True for the answer of get_arg when there is no such argument.
inline bool is_blank(std::string_view text) {
    return text.empty() || text.front() == ' ';
}
/// The n-th argument (0 the command word), `~` substituted; " " when there is none. Valid until the
/// next record.
std::string_view get_arg(int n);
/// The command word, `~` substituted, at most 32 characters, no trailing blanks.
std::string get_command_word();

/// Values of a parameter; the key stands exactly as required, leading blank included. A key
/// followed by a blank gives zeros; `key~name` takes the array's values. Values unchanged when
/// absent.
void get_int_par(std::string_view key, std::span<std::int32_t> values);
void get_real_par(std::string_view key, std::span<double> values);
void get_complex_par(std::string_view key, std::span<Complex8> values);
inline void get_int_par(std::string_view key, std::int32_t& value) {
    get_int_par(key, {&value, 1});
}
inline void get_real_par(std::string_view key, double& value) {
    get_real_par(key, {&value, 1});
}
/// Character value into a field of `capacity` characters, its NUL included; quotes removed.
void get_char_par(std::string_view key, std::string& text, std::size_t capacity);
/// True when the flag stands on the line (reads as 0, like every flag).
bool has_flag(std::string_view key);

/// Reads a data record and parses it: blanks and commas separate, missing values are 0.
void read_real_record(std::string_view prompt, std::span<double> values);
void read_int_record(std::string_view prompt, std::span<std::int32_t> values);
void read_complex_record(std::string_view prompt, std::span<Complex8> values);
/// First n characters of the record, blank-padded.
void read_char_record(std::string_view prompt, std::span<char> text);

/// C library rules of atoi and atof on a text that need not end in a NUL.
std::int32_t text_to_int(std::string_view text);
double text_to_real(std::string_view text);

/// Whether records read are copied to the output file (off while a loop replays).
bool echo_flag();
void set_echo_flag(bool on);

} // namespace quelor
