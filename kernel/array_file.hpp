// One array in a file: type, number of dimensions, dimensions (32-bit little-endian integers), then
// its elements in storage order, in one write or read. The database file is a sequence of such
// entries with names between them.
#pragma once

#include "kernel/dbfgen.hpp"

#include <cstdio>
#include <memory>
#include <string>

namespace quelor {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

/// Writer of one file; `good` stays false from the first failure on.
struct ArrayWriter {
    File file; ///< null when it could not be opened
    bool good = static_cast<bool>(file);

    void bytes(const void* data, std::uint64_t n) {
        good = good && std::fwrite(data, 1, n, file.get()) == n;
    }
    void integer(std::int32_t value) { bytes(&value, sizeof value); }
    void array(const ArrayRef& array);
    /// Waits until what was written is on the disk.
    bool sync();
    /// Closes the file; true when all of it was written (a full disk may show only here).
    bool close() { return file && std::fclose(file.release()) == 0 && good; }
};

/// Reader of one regular file that knows how many bytes are left, so that no size is believed
/// before it has been held against them.
struct ArrayReader {
    File file;
    std::uint64_t left = 0;

    bool bytes(void* data, std::uint64_t n) {
        if (n > left || std::fread(data, 1, n, file.get()) != n) return false;
        left -= n;
        return true;
    }
    bool integer(std::int32_t& value) { return bytes(&value, sizeof value); }
    /// Room for `count` items of a size, count taken from the file.
    bool holds(std::int32_t count, std::uint64_t size) const {
        return count > 0 && static_cast<std::uint64_t>(count) <= left / size;
    }
    /// Creates the array `name` from the entry that begins here. False when the entry is not whole
    /// or not of this system, or there is no memory; an array of that name may then be in part.
    bool array(std::string_view name);
};

/// Its file is null for anything but a regular file that can be read (a pipe would wait for ever).
ArrayReader open_array_file(const std::string& path);

} // namespace quelor
