// Units: the screen (6), the output file (2) and the results files, and formatted, record and
// stream writing to them. A unit number is connected by an open and released by close_unit.
#pragma once

#include "kernel/format.hpp"

#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace quelor {

inline constexpr int unit_output = 2;
inline constexpr int unit_screen = 6;

// --- opening -------------------------------------------------------------------------------------
// status:   "OLD" must exist, "NEW" must not, "UNKNOWN" takes a file or makes one, "REPLACE" starts
//           an empty one; an existing file is opened for reading alone where it cannot be written
// form:     "FORMATTED", "UNFORMATTED" (sequential records) or "BINARY" (stream)
// position: "REWIND" or "APPEND"
// Each in either case. They return iostat, 0 on success; a failure is reported on both units. An
// unknown form takes the fatal path. A unit that is connected is closed first.

/// Opens "<project><extension>", cut to 132 characters.
int fortopen_ext(int unit, std::string_view extension, std::string_view status,
                 std::string_view form);
int fortopen_ext_position(int unit, std::string_view extension, std::string_view status,
                          std::string_view form, std::string_view position);
/// Opens the name as it stands.
int fortopen_name(int unit, std::string_view name, std::string_view status, std::string_view form);
/// The screen is only flushed.
void close_unit(int unit);
void close_and_delete_unit(int unit);
void rewind_unit(int unit);
/// To be called for the screen before a read from the console and before another program runs.
void flush_unit(int unit);
void close_all_units();

// --- formatted writing ---------------------------------------------------------------------------
// The first write after an open, a rewind or a read makes the place where it begins the end of the
// file. A write to a unit that is not open does nothing.

/// One formatted write statement. Items that do not suit the format end it with a message.
void write_unit(int unit, const Format& format, const FormatItems& items = {});
/// Screen, then output file.
void write_both(const Format& format, const FormatItems& items = {});
/// Raw characters, no line end.
void write_text(int unit, std::string_view text);

/// True when a write to the unit has failed (a full disk), until the unit is opened again; a
/// message has been printed once and what came after is lost. Certain only after close_unit or
/// flush_unit.
bool unit_has_failed(int unit);

// --- sequential records (32-bit length, bytes, length) -------------------------------------------

template <class T> inline constexpr bool is_record_item = std::is_arithmetic_v<T>;
template <class T> inline constexpr bool is_record_item<std::complex<T>> = true;

/// Collects the items of one write statement; the record is complete when it goes out of scope.
/// Long records are written as they come, so that an array is never held twice.
class RecordWriter {
public:
    explicit RecordWriter(int unit) : unit_(unit) {}
    ~RecordWriter();
    RecordWriter(const RecordWriter&) = delete;
    RecordWriter& operator=(const RecordWriter&) = delete;
    template <class T>
    requires is_record_item<T> RecordWriter& put(const T& value) {
        return bytes(&value, sizeof value);
    }
    template <class T> RecordWriter& put(std::span<T> values) {
        static_assert(is_record_item<std::remove_const_t<T>>);
        return bytes(values.data(), values.size_bytes());
    }

private:
    RecordWriter& bytes(const void* data, std::size_t n);
    void spill();

    int unit_;
    std::vector<char> buffer_;
    std::uint64_t length_ = 0;
    std::int64_t begin_ = -1; ///< place of the leading count once part of the record is written
};
/// Next record's bytes; false at end of file or when the counts do not agree.
bool read_record_bytes(int unit, std::vector<char>& record);
/// Before the last record; false at the beginning.
bool backspace_record(int unit);

// --- streams -------------------------------------------------------------------------------------

void stream_write_bytes(int unit, const void* data, std::size_t n);
/// False when the file ends before n bytes.
bool stream_read_bytes(int unit, void* data, std::size_t n);
template <class T> void stream_write(int unit, std::span<T> values) {
    stream_write_bytes(unit, values.data(), values.size_bytes());
}
template <class T> bool stream_read(int unit, std::span<T> values) {
    return stream_read_bytes(unit, values.data(), values.size_bytes());
}

} // namespace quelor
