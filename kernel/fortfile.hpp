// Units: the screen (6), the output file (2) and the results files, and formatted, record and
// stream writing to them. A unit number is connected by an open and released by close_unit.
#pragma once

#include "kernel/format.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace quelor {

inline constexpr int unit_output = 2;
inline constexpr int unit_screen = 6;

// --- opening
// -------------------------------------------------------------------------------------- status:
// "OLD", "NEW", "UNKNOWN", "REPLACE"; form: "FORMATTED", "UNFORMATTED" (sequential records) or
// "BINARY" (stream), either case; position: "REWIND" or "APPEND". They return iostat, 0 on success;
// a failure is reported on both units. An unknown form takes the fatal path.
int fortopen_ext(int unit, std::string_view extension, std::string_view status,
                 std::string_view form);
int fortopen_ext_position(int unit, std::string_view extension, std::string_view status,
                          std::string_view form, std::string_view position);
int fortopen_name(int unit, std::string_view name, std::string_view status, std::string_view form);
void close_unit(int unit);
void close_and_delete_unit(int unit);
bool unit_is_open(int unit);
void rewind_unit(int unit);
void flush_unit(int unit);
void close_all_units();

// --- formatted writing
// ----------------------------------------------------------------------------
/// One formatted write statement; a write to a closed unit does nothing.
void write_unit(int unit, const Format& format, FormatItems items = {});
/// Screen, then output file.
void write_both(const Format& format, FormatItems items = {});
/// Raw characters, no line end.
void write_text(int unit, std::string_view text);

/// True when a write to the unit has failed (a full disk); a message has been printed once.
bool unit_has_failed(int unit);

// --- formatted reading
// ----------------------------------------------------------------------------
/// Next line without its end; false at end of file.
bool read_line(int unit, std::string& line);

// --- sequential records (32-bit length, bytes, length)
// ----------------------------------------------
/// Collects the items of one write statement.
class RecordWriter {
public:
    explicit RecordWriter(int unit) : unit_(unit) {}
    ~RecordWriter();
    RecordWriter(const RecordWriter&) = delete;
    RecordWriter& operator=(const RecordWriter&) = delete;
    template <class T> RecordWriter& put(const T& value) { return bytes(&value, sizeof value); }
    template <class T> RecordWriter& put(std::span<T> values) {
        return bytes(values.data(), values.size_bytes());
    }

private:
    RecordWriter& bytes(const void* data, std::size_t n);
    int unit_;
    std::vector<char> buffer_;
};
/// Next record's bytes; false at end of file or when the counts do not agree.
bool read_record_bytes(int unit, std::vector<char>& record);
bool backspace_record(int unit);

// --- streams
// ----------------------------------------------------------------------------------------
void stream_write_bytes(int unit, const void* data, std::size_t n);
bool stream_read_bytes(int unit, void* data, std::size_t n);
template <class T> void stream_write(int unit, std::span<T> values) {
    stream_write_bytes(unit, values.data(), values.size_bytes());
}
template <class T> bool stream_read(int unit, std::span<T> values) {
    return stream_read_bytes(unit, values.data(), values.size_bytes());
}

} // namespace quelor
