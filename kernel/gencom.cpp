// The current input record: the reader joins the lines of a record and cleans it; the parser
// answers what a command routine asks of it. Keys are searched for in the text of the record;
// arguments and character values are taken from its tokens, a copy of the same length in which the
// blanks between tokens are NUL bytes, so that positions agree.
#include "kernel/gencom.hpp"

#include "kernel/fortfile.hpp"
#include "kernel/iof.hpp"
#include "kernel/process_state.hpp"
#include "kernel/project.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace quelor {

namespace {

struct RecordState {
    std::string buffer; // as read, lines joined, tabs blanked, comment in place
    std::string text;   // without leading blanks and comment
    std::string tokens; // made on first need
    bool has_tokens = false;
    bool echo = true;
};

RecordState& record() {
    return process_state<RecordState>();
}

// --- reading ------------------------------------------------------------------------------------

/// Position of the "&" that continues the line which begins at `start`; npos when none does. The
/// blanks skipped behind one "&" are skipped again, unseen, behind the next one of the line.
std::size_t continuation_mark(std::string_view buffer, std::size_t start) {
    std::size_t skipped = 0;
    for (auto mark = buffer.find('&', start); mark != std::string_view::npos;
         mark = buffer.find('&', mark + 1)) {
        std::size_t look = mark + 1 + skipped;
        for (; look < buffer.size() && buffer[look] == ' '; ++look)
            ++skipped;
        if (look >= buffer.size()) return mark;
    }
    return std::string_view::npos;
}

[[noreturn]] void record_too_long() {
    write_unit(
        unit_screen,
        "10(/, 'FATAL ERROR - INPUT LINE > ', a, ' characters', //, 'Program must shut down')",
        {std::to_string(record_limit)});
    exit_unsaved(true);
}

/// Reads the lines of one logical record; each continuation line overwrites the "&" before it.
std::string read_logical_line(std::string_view prompt, LineKind kind) {
    std::string buffer;
    std::size_t start = 0;
    for (bool prompt_written = false;; prompt_written = true) {
        buffer.resize(start);
        buffer += read_input_line(prompt, prompt_written, kind).text;
        const auto mark = continuation_mark(buffer, start);
        const auto length = mark == std::string::npos ? buffer.size() : mark;
        if (length > record_limit) record_too_long();
        if (mark == std::string::npos) return buffer;
        start = mark;
    }
}

/// The reader beneath every record read.
void read_next_record(std::string_view prompt, LineKind kind) {
    set_record(read_logical_line(prompt, kind));
    if (!input_is_console() && input_echo()) write_unit(unit_screen, "(a)", {record().buffer});
}

// --- tokens -------------------------------------------------------------------------------------

/// Each blank that ends a token becomes NUL; further blanks of a run stay.
void cut_at_blanks(std::string& tokens) {
    for (std::size_t i = 1; i < tokens.size(); ++i)
        if (tokens[i] == ' ' && tokens[i - 1] != ' ' && tokens[i - 1] != '\0') tokens[i] = '\0';
}

/// Joins what stands between single quotes again; a quoted text with a blank before it is a token
/// of its own, without its quotes.
void join_quoted(std::string_view text, std::string& tokens) {
    std::size_t open = text.find('\'');
    while (open != std::string_view::npos) {
        const auto close = text.find('\'', open + 1);
        if (close == std::string_view::npos) return;
        if (open > 0 && (tokens[open - 1] == '\0' || tokens[open - 1] == ' ')) {
            tokens[open] = ' ';
            tokens[close] = '\0';
            if (close + 1 < tokens.size()) tokens[close + 1] = ' ';
        }
        std::replace(tokens.begin() + static_cast<std::ptrdiff_t>(open) + 1,
                     tokens.begin() + static_cast<std::ptrdiff_t>(close), '\0', ' ');
        open = text.find('\'', close + 1);
    }
}

const std::string& record_tokens() {
    RecordState& state = record();
    if (!state.has_tokens) {
        state.tokens = state.text;
        cut_at_blanks(state.tokens);
        join_quoted(state.text, state.tokens);
        state.has_tokens = true;
    }
    return state.tokens;
}

/// The token, or the rest of it, from a position up to its NUL.
std::string_view token_from(std::size_t position) {
    const std::string_view tokens = record_tokens();
    const auto rest = tokens.substr(std::min(position, tokens.size()));
    return rest.substr(0, rest.find('\0'));
}

/// Start of the first token at or behind a position; npos at the end of the record.
std::size_t token_start(std::size_t position) {
    return position >= record_tokens().size() ? std::string::npos
                                              : record_tokens().find_first_not_of(' ', position);
}

bool is_argument(std::string_view token) {
    return !token.starts_with('-') && token.find('=') == std::string_view::npos;
}

/// The n-th token that counts as an argument, unsubstituted; empty when there is none.
std::string_view argument_token(int n) {
    std::string_view token = token_from(0);
    std::size_t position = 0;
    while (n > 0) {
        position = token_start(position + token.size() + 1);
        if (position == std::string::npos) return {};
        token = token_from(position);
        if (is_argument(token)) --n;
    }
    return token;
}

// --- values -------------------------------------------------------------------------------------

bool is_number_break(char c) {
    return c == ' ' || c == ',';
}

/// The longest piece of a text that can hold one number, white space before it included.
std::string number_piece(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\n\v\f\r");
    if (first == std::string_view::npos) return {};
    const auto end = std::find_if(text.begin() + static_cast<std::ptrdiff_t>(first), text.end(),
                                  is_number_break);
    return std::string(text.begin() + static_cast<std::ptrdiff_t>(first), end);
}

/// What stands behind a key.
struct Parameter {
    enum class Form { absent, empty, array, list };
    Form form = Form::absent;
    std::size_t position = 0; // behind the key, or behind its "~"
};

Parameter find_parameter(std::string_view key) {
    const std::string& text = record().text;
    const auto found = text.find(key);
    if (found == std::string::npos) return {};
    const std::size_t position = found + key.size();
    if (position < text.size() && text[position] == ' ') return {Parameter::Form::empty, position};
    if (position < text.size() && text[position] == '~')
        return {Parameter::Form::array, position + 1};
    return {Parameter::Form::list, position};
}

/// Values of a comma-separated list. `blank_ends`: a blank ends the list and leaves zeros;
/// otherwise the number behind the blank is read.
template <class T, class Convert>
void read_list(std::size_t position, std::span<T> values, bool blank_ends, Convert convert) {
    const std::string_view text = record().text;
    const auto at_blank = [&] { return position >= text.size() || text[position] == ' '; };
    bool ended = false;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (i > 0) {
            while (position < text.size() && !is_number_break(text[position]))
                ++position;
            if (position < text.size() && text[position] == ',') {
                ++position;
                ended = ended || (blank_ends && at_blank());
            } else {
                ended = ended || blank_ends;
            }
        }
        values[i] = ended ? T{} : convert(text.substr(std::min(position, text.size())));
    }
}

/// The array named behind the "~" of a parameter, and how many of its elements the caller takes.
struct ParameterArray {
    ArrayRef ref;
    std::size_t count = 0;
};

ParameterArray parameter_array(std::size_t position, std::size_t wanted) {
    const ArrayRef ref = find_array_2d(token_from(position));
    if (!ref) return {};
    const auto elements = as_size(ref.rows()) * as_size(ref.cols());
    return {ref, std::min(wanted, elements)};
}

/// The reals of a list behind a key; false in `~` form, or when nothing is to be read.
bool read_reals(const Parameter& parameter, std::span<double> values) {
    if (parameter.form == Parameter::Form::absent) return true;
    if (parameter.form == Parameter::Form::list) {
        read_list(parameter.position, values, true, text_to_real);
        return true;
    }
    std::fill(values.begin(), values.end(), 0.0);
    return parameter.form == Parameter::Form::empty;
}

/// Characters of an array for a field of `capacity`, its NUL included.
std::string array_text(std::size_t position, std::size_t capacity) {
    const auto [ref, count] = parameter_array(position, capacity);
    if (!ref.is(type_character)) return {};
    const char* const chars = static_cast<const char*>(ref.data);
    const std::string_view text(chars, strnlen(chars, count));
    return std::string(text.substr(0, capacity - 1));
}

/// 's a' gives s a: the opening quote and blanks behind it go, the closing quote leaves a blank,
/// but not at the end.
void remove_quotes(std::string& text) {
    if (!text.starts_with('\'')) return;
    text.erase(0, std::min(text.find_first_not_of(' ', 1), text.size()));
    const auto close = text.find('\'');
    if (close == std::string::npos) return;
    if (close + 1 == text.size()) {
        text.pop_back();
    } else {
        text[close] = ' ';
    }
}

/// Values of a data record: blanks and commas in any number separate, missing ones are 0.
template <class T, class Convert> void split_values(std::span<T> values, Convert convert) {
    std::string_view rest = record().text;
    for (T& value : values) {
        rest.remove_prefix(std::min(rest.find_first_not_of(" ,"), rest.size()));
        const auto end = std::min(rest.find_first_of(" ,"), rest.size());
        value = convert(rest.substr(0, end));
        rest.remove_prefix(end);
    }
}

std::span<double> parts(std::span<Complex8> values) {
    return {reinterpret_cast<double*>(values.data()), 2 * values.size()}; // (re, im) pairs
}

} // namespace

void read_record(std::string_view prompt, std::string_view echo_prefix, bool echo) {
    read_next_record(prompt, LineKind::command);
    if (!echo) return;
    if (echo_prefix.empty()) echo_prefix = "       ";
    if (record().text.empty()) echo_prefix = {};
    write_chars(unit_output, echo_prefix);
    write_text(unit_output, record().buffer + "\n");
}

void next_record(std::string_view prompt) {
    read_next_record(prompt, LineKind::data);
}

std::string_view record_text() {
    return record().text;
}

void set_record(std::string_view text) {
    RecordState& state = record();
    state.buffer = text.substr(0, text.find('\0'));
    std::replace(state.buffer.begin(), state.buffer.end(), '\t', ' ');
    state.text =
        state.buffer.substr(std::min(state.buffer.find_first_not_of(' '), state.buffer.size()));
    state.text.resize(std::min(state.text.find("/*"), state.text.size()));
    state.has_tokens = false;
}

std::string_view get_arg(int n) {
    std::string_view token = argument_token(n);
    if (token.starts_with('~')) {
        const ArrayRef ref = find_array_2d(token.substr(1));
        if (ref.is(type_character)) {
            const auto chars = as_matrix<const char>(ref).all();
            const auto length = strnlen(chars.data(), chars.size());
            if (length < chars.size()) token = {chars.data(), length};
        }
    }
    return token.empty() ? " " : token;
}

std::string get_command_word() {
    const std::string_view token = token_from(0);
    std::string word;
    if (!token.starts_with('~')) {
        word = token.substr(0, word_length);
    } else if (const ArrayRef ref = find_array_2d(token.substr(1)); ref.is(type_character)) {
        const auto chars = as_matrix<const char>(ref);
        const int length = std::min(chars.cols, static_cast<int>(word_length));
        for (int j = 1; j <= length; ++j)
            word += chars(1, j);
        const auto nul = word.find('\0');
        if (nul != std::string::npos) word[nul] = ' ';
    }
    word.resize(word.find_last_not_of(' ') + 1);
    return word;
}

void get_int_par(std::string_view key, std::span<std::int32_t> values) {
    const Parameter parameter = find_parameter(key);
    if (parameter.form == Parameter::Form::absent) return;
    if (parameter.form == Parameter::Form::list)
        return read_list(parameter.position, values, false, text_to_int);
    std::fill(values.begin(), values.end(), 0);
    if (parameter.form == Parameter::Form::empty) return;
    const auto [ref, count] = parameter_array(parameter.position, values.size());
    if (ref.is(type_integer)) {
        std::copy_n(as_span<const std::int32_t>(ref).begin(), count, values.begin());
    } else if (ref.is(type_real)) {
        std::transform(as_span<const double>(ref).begin(),
                       as_span<const double>(ref).begin() + static_cast<std::ptrdiff_t>(count),
                       values.begin(), nearest_int);
    }
}

void get_real_par(std::string_view key, std::span<double> values) {
    const Parameter parameter = find_parameter(key);
    if (read_reals(parameter, values)) return;
    const auto [ref, count] = parameter_array(parameter.position, values.size());
    if (ref.is(type_real)) {
        std::copy_n(as_span<const double>(ref).begin(), count, values.begin());
    } else if (ref.is(type_integer)) {
        std::copy_n(as_span<const std::int32_t>(ref).begin(), count, values.begin());
    }
}

void get_complex_par(std::string_view key, std::span<Complex8> values) {
    const Parameter parameter = find_parameter(key);
    if (read_reals(parameter, parts(values))) return;
    const auto [ref, count] = parameter_array(parameter.position, values.size());
    if (ref.is(type_complex8)) {
        std::copy_n(as_span<const Complex8>(ref).begin(), count, values.begin());
    } else if (ref.is(type_real)) {
        // A real array is read here as 32-bit integers, each the real part of a value: command
        // files rely on it. `count` integers lie within the array.
        for (std::size_t i = 0; i < count; ++i) {
            std::int32_t word = 0;
            std::memcpy(&word, static_cast<const char*>(ref.data) + i * sizeof word, sizeof word);
            values[i] = static_cast<double>(static_cast<float>(word));
        }
    }
}

void get_char_par(std::string_view key, std::string& text, std::size_t capacity) {
    const Parameter parameter = find_parameter(key);
    if (parameter.form == Parameter::Form::array) {
        text = array_text(parameter.position, capacity);
    } else if (parameter.form != Parameter::Form::absent) {
        text = token_from(parameter.position).substr(0, capacity - 1);
    }
    remove_quotes(text);
}

bool has_flag(std::string_view key) {
    std::int32_t value = 1;
    get_int_par(key, value);
    return value == 0;
}

void read_real_record(std::string_view prompt, std::span<double> values) {
    next_record(prompt);
    split_values(values, text_to_real);
}

void read_int_record(std::string_view prompt, std::span<std::int32_t> values) {
    next_record(prompt);
    split_values(values, text_to_int);
}

void read_complex_record(std::string_view prompt, std::span<Complex8> values) {
    next_record(prompt);
    split_values(parts(values), text_to_real);
}

void read_char_record(std::string_view prompt, std::span<char> text) {
    next_record(prompt);
    const std::string_view from = record().text;
    const auto copied = std::min(from.size(), text.size());
    std::copy_n(from.begin(), copied, text.begin());
    std::fill(text.begin() + static_cast<std::ptrdiff_t>(copied), text.end(), ' ');
}

std::int32_t text_to_int(std::string_view text) {
    using Limits = std::numeric_limits<std::int32_t>;
    const long value = std::strtol(number_piece(text).c_str(), nullptr, 10);
    return static_cast<std::int32_t>(std::clamp(value, long{Limits::min()}, long{Limits::max()}));
}

double text_to_real(std::string_view text) {
    return std::strtod(number_piece(text).c_str(), nullptr);
}

bool echo_flag() {
    return record().echo;
}

void set_echo_flag(bool on) {
    record().echo = on;
}

} // namespace quelor
