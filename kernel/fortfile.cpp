// Units and their files. The table of connected units is the only state; the screen is always in
// it. A unit whose write has failed takes no more bytes, so that no file has a hole in its middle.
#include "kernel/fortfile.hpp"

#include "kernel/process_state.hpp"
#include "kernel/project.hpp"

#include <algorithm>
#include <bit>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <map>
#include <sys/stat.h>
#include <unistd.h>

namespace quelor {

static_assert(std::endian::native == std::endian::little, "record counts are little-endian");

namespace {

enum class Form { formatted, records, stream };
enum class Activity { none, reading, writing };

struct Unit {
    std::FILE* file = nullptr;
    std::string name;
    Form form = Form::formatted;
    Activity last = Activity::none;
    bool failed = false;
};

struct UnitTable {
    std::map<int, Unit> units{
        {unit_screen, {.file = stdout, .name = "screen", .last = Activity::writing}}};

    ~UnitTable() {
        for (const auto& [number, unit] : units)
            if (unit.file && number != unit_screen) std::fclose(unit.file);
    }
};

std::map<int, Unit>& units() {
    return process_state<UnitTable>().units;
}

/// The unit when it is connected, else null.
Unit* connected(int number) {
    const auto found = units().find(number);
    return found != units().end() && found->second.file ? &found->second : nullptr;
}

std::string formatted(const Format& format, const FormatItems& items) {
    FormatResult result = format_write(format, items);
    if (!result.error.empty())
        result.text +=
            "\n  Error in format " + std::string(format.text()) + ": " + result.error + "\n";
    return std::move(result.text);
}

/// The message goes past the units, so that a screen that fails as well is no further matter.
void report_failed_write(int number, Unit& unit) {
    const char* const reason = std::strerror(errno);
    if (unit.failed) return;
    unit.failed = true;
    if (number == unit_screen) return;
    const std::string text =
        formatted("10(/, '  Error writing file ', a, ': ', a, /)", {unit.name, reason});
    std::fwrite(text.data(), 1, text.size(), stdout);
}

/// Between reading and writing a C stream needs a seek; what follows the place of a write is gone.
void prepare_write(Unit& unit) {
    if (unit.last == Activity::writing) return;
    unit.last = Activity::writing;
    std::fseek(unit.file, 0, SEEK_CUR);
    struct stat status {};
    const off_t at = ftello(unit.file);
    if (fstat(fileno(unit.file), &status) == 0 && S_ISREG(status.st_mode) && status.st_size > at &&
        ftruncate(fileno(unit.file), at) != 0)
        std::fseek(unit.file, at, SEEK_SET); // opened for reading alone: the write will fail
}

void prepare_read(Unit& unit) {
    if (unit.last == Activity::writing) std::fseek(unit.file, 0, SEEK_CUR);
    unit.last = Activity::reading;
}

void put_bytes(int number, Unit& unit, const void* data, std::size_t n) {
    if (unit.failed || n == 0) return;
    prepare_write(unit);
    if (std::fwrite(data, 1, n, unit.file) != n) report_failed_write(number, unit);
}

void put_text(int number, std::string_view text) {
    Unit* const unit = connected(number);
    if (!unit || text.empty()) return;
    put_bytes(number, *unit, text.data(), text.size());
    static const bool on_terminal = isatty(STDOUT_FILENO) != 0;
    if (number == unit_screen && on_terminal && text.back() != '\n')
        std::fflush(stdout); // a prompt, or the progress of a long step
}

bool same_word(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](unsigned char x, unsigned char y) {
        return std::toupper(x) == std::toupper(y);
    });
}

/// The file descriptor, or -1 with errno set.
int open_descriptor(const std::string& name, std::string_view status) {
    int flags = O_RDWR | O_CLOEXEC;
    if (same_word(status, "NEW"))
        flags |= O_CREAT | O_EXCL;
    else if (same_word(status, "REPLACE"))
        flags |= O_CREAT | O_TRUNC;
    else if (!same_word(status, "OLD"))
        flags |= O_CREAT;
    const int descriptor = open(name.c_str(), flags, 0666);
    if (descriptor >= 0 || (flags & (O_EXCL | O_TRUNC)) || (errno != EACCES && errno != EROFS))
        return descriptor;
    const int reason = errno;
    const int read_only = open(name.c_str(), O_RDONLY | O_CLOEXEC);
    if (read_only < 0) errno = reason;
    return read_only;
}

struct Opening {
    std::string_view routine, name, status, form, position;
};

/// The form; an unknown one is a fault of the program and takes the fatal path.
Form form_of(const Opening& opening) {
    if (same_word(opening.form, "FORMATTED")) return Form::formatted;
    if (same_word(opening.form, "UNFORMATTED")) return Form::records;
    if (same_word(opening.form, "BINARY")) return Form::stream;
    write_both("(' Error opening file ', a, 'in routine ', a, '. File type ', a, "
               "' not supported.')",
               {opening.name, opening.routine, opening.form});
    shutdown();
}

// A stream and a record file differ only in what is written to them, so a file that does not open
// as the one does not open as the other either: there is no second try.
int open_unit(int number, const Opening& opening) {
    const Form form = form_of(opening);
    close_unit(number);
    Unit& unit = units()[number] = {};
    const std::string name(opening.name);
    const int descriptor = open_descriptor(name, opening.status);
    std::FILE* file = nullptr;
    if (descriptor >= 0) {
        const bool writable = (fcntl(descriptor, F_GETFL) & O_ACCMODE) == O_RDWR;
        file = fdopen(descriptor, writable ? "r+b" : "rb");
    }
    if (!file) {
        const int iostat = errno;
        write_both("10(/, '  Error opening file ', a, ', iostat =', i4, /)", {name, iostat});
        return iostat;
    }
    unit.file = file;
    unit.name = name;
    unit.form = form;
    if (same_word(opening.position, "APPEND")) std::fseek(file, 0, SEEK_END);
    return 0;
}

std::string project_file(std::string_view extension) {
    std::string name(project_name());
    name += extension;
    if (name.size() > 132) name.resize(132);
    return name;
}

bool get_count(std::FILE* file, std::uint32_t& count) {
    return std::fread(&count, sizeof count, 1, file) == 1;
}

/// Bytes of the file after the present place.
std::uint64_t bytes_left(std::FILE* file) {
    struct stat status {};
    const off_t at = ftello(file);
    if (fstat(fileno(file), &status) != 0 || at < 0 || status.st_size < at) return 0;
    return static_cast<std::uint64_t>(status.st_size - at);
}

bool backspace_counted(std::FILE* file) {
    const off_t at = ftello(file);
    std::uint32_t trailing = 0, leading = 0;
    if (at < 8 || fseeko(file, at - 4, SEEK_SET) != 0 || !get_count(file, trailing)) return false;
    const off_t begin = at - 8 - static_cast<off_t>(trailing);
    if (begin < 0 || fseeko(file, begin, SEEK_SET) != 0 || !get_count(file, leading) ||
        leading != trailing) {
        fseeko(file, at, SEEK_SET);
        return false;
    }
    return fseeko(file, begin, SEEK_SET) == 0;
}

} // namespace

int fortopen_ext(int unit, std::string_view extension, std::string_view status,
                 std::string_view form) {
    const std::string name = project_file(extension);
    return open_unit(unit, {"fortopen_ext", name, status, form, "REWIND"});
}

int fortopen_ext_position(int unit, std::string_view extension, std::string_view status,
                          std::string_view form, std::string_view position) {
    const std::string name = project_file(extension);
    return open_unit(unit, {"fortopen_ext_position", name, status, form, position});
}

int fortopen_name(int unit, std::string_view name, std::string_view status, std::string_view form) {
    return open_unit(unit, {"fortopen_name", name, status, form, "REWIND"});
}

void close_unit(int number) {
    flush_unit(number);
    Unit* const unit = connected(number);
    if (!unit || number == unit_screen) return;
    if (std::fclose(unit->file) != 0) report_failed_write(number, *unit);
    unit->file = nullptr;
}

void close_and_delete_unit(int number) {
    Unit* const unit = connected(number);
    if (!unit || number == unit_screen) return;
    std::fclose(unit->file);
    unit->file = nullptr;
    std::remove(unit->name.c_str());
}

void rewind_unit(int number) {
    Unit* const unit = connected(number);
    if (!unit || number == unit_screen) return;
    flush_unit(number);
    std::rewind(unit->file);
    unit->last = Activity::none;
}

void flush_unit(int number) {
    Unit* const unit = connected(number);
    if (unit && unit->last == Activity::writing && std::fflush(unit->file) != 0)
        report_failed_write(number, *unit);
}

void close_all_units() {
    for (const auto& entry : units())
        close_unit(entry.first);
}

void write_unit(int unit, const Format& format, const FormatItems& items) {
    if (connected(unit)) put_text(unit, formatted(format, items));
}

void write_both(const Format& format, const FormatItems& items) {
    const std::string text = formatted(format, items);
    put_text(unit_screen, text);
    put_text(unit_output, text);
}

void write_text(int unit, std::string_view text) {
    put_text(unit, text);
}

bool unit_has_failed(int number) {
    const auto found = units().find(number);
    return found != units().end() && found->second.failed;
}

/// Part of a record that is held back until its length is known.
static constexpr std::size_t record_buffer_size = 65536;

RecordWriter& RecordWriter::bytes(const void* data, std::size_t n) {
    length_ += n;
    const char* const from = static_cast<const char*>(data);
    if (buffer_.size() + n <= record_buffer_size) {
        buffer_.insert(buffer_.end(), from, from + n);
        return *this;
    }
    spill();
    if (Unit* const unit = connected(unit_)) put_bytes(unit_, *unit, data, n);
    return *this;
}

/// Writes what is held, behind a leading count that the destructor corrects.
void RecordWriter::spill() {
    Unit* const unit = connected(unit_);
    if (!unit) return;
    if (begin_ < 0) {
        const std::uint32_t unknown = 0;
        prepare_write(*unit);
        begin_ = ftello(unit->file);
        put_bytes(unit_, *unit, &unknown, sizeof unknown);
    }
    put_bytes(unit_, *unit, buffer_.data(), buffer_.size());
    buffer_.clear();
}

RecordWriter::~RecordWriter() {
    Unit* const unit = connected(unit_);
    if (!unit) return;
    const auto count = static_cast<std::uint32_t>(length_);
    if (length_ != count) {
        errno = EFBIG;
        report_failed_write(unit_, *unit);
    } else if (begin_ < 0) {
        put_bytes(unit_, *unit, &count, sizeof count);
        put_bytes(unit_, *unit, buffer_.data(), buffer_.size());
        put_bytes(unit_, *unit, &count, sizeof count);
    } else {
        spill();
        put_bytes(unit_, *unit, &count, sizeof count);
        const off_t end = ftello(unit->file);
        const bool at_begin = fseeko(unit->file, begin_, SEEK_SET) == 0;
        if (at_begin) put_bytes(unit_, *unit, &count, sizeof count);
        if (!at_begin || fseeko(unit->file, end, SEEK_SET) != 0) report_failed_write(unit_, *unit);
    }
}

bool read_record_bytes(int number, std::vector<char>& record) {
    record.clear();
    Unit* const unit = connected(number);
    if (!unit || number == unit_screen) return false;
    prepare_read(*unit);
    std::uint32_t leading = 0, trailing = 0;
    if (!get_count(unit->file, leading) || bytes_left(unit->file) < std::uint64_t{leading} + 4)
        return false;
    record.resize(leading);
    return std::fread(record.data(), 1, leading, unit->file) == leading &&
           get_count(unit->file, trailing) && trailing == leading;
}

bool backspace_record(int number) {
    Unit* const unit = connected(number);
    if (!unit || number == unit_screen || unit->form != Form::records) return false;
    prepare_read(*unit);
    return backspace_counted(unit->file);
}

void stream_write_bytes(int number, const void* data, std::size_t n) {
    if (Unit* const unit = connected(number)) put_bytes(number, *unit, data, n);
}

bool stream_read_bytes(int number, void* data, std::size_t n) {
    Unit* const unit = connected(number);
    if (!unit || number == unit_screen) return false;
    prepare_read(*unit);
    return std::fread(data, 1, n, unit->file) == n;
}

} // namespace quelor
