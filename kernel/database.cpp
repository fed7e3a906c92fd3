// The database file "<name>.db": the arrays in name order, each as length of name, name, type,
// number of dimensions, dimensions (32-bit little-endian integers), elements; closed by a length
// of 0. Each block is one write and one read.
#include "kernel/dbfgen.hpp"
#include "kernel/project.hpp"

#include <bit>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace quelor {

namespace {

static_assert(std::endian::native == std::endian::little, "the file's integers are little-endian");

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

/// Writer of one file; `good` stays false from the first failure on.
struct Writer {
    std::FILE* file;
    bool good = true;

    void bytes(const void* data, std::uint64_t n) {
        good = good && std::fwrite(data, 1, n, file) == n;
    }
    void integer(std::int32_t value) { bytes(&value, sizeof value); }
};

void write_array(Writer& out, const NamedArray& entry) {
    out.integer(static_cast<std::int32_t>(entry.name.size()));
    out.bytes(entry.name.data(), entry.name.size());
    out.integer(entry.array.type);
    out.integer(entry.array.ndim());
    out.bytes(entry.array.dims.data(), entry.array.dims.size_bytes());
    out.bytes(entry.array.data, array_byte_size(entry.array.type, entry.array.dims));
}

bool write_database(const std::string& path) {
    File file(std::fopen(path.c_str(), "wb"));
    if (!file) return false;
    Writer out{file.get()};
    for (NamedArray entry = db_next({}); !entry.name.empty() && out.good;
         entry = db_next(entry.name))
        write_array(out, entry);
    out.integer(0);
    return std::fclose(file.release()) == 0 && out.good; // a full disk may show only here
}

/// Reader of one file that knows how many bytes are left, so that no size is believed before it
/// has been held against them.
struct Reader {
    std::FILE* file;
    std::uint64_t left;

    bool bytes(void* data, std::uint64_t n) {
        if (n > left || std::fread(data, 1, n, file) != n) return false;
        left -= n;
        return true;
    }
    bool integer(std::int32_t& value) { return bytes(&value, sizeof value); }
    /// Room for `count` items of a size, count taken from the file.
    bool holds(std::int32_t count, std::uint64_t size) const {
        return count > 0 && static_cast<std::uint64_t>(count) <= left / size;
    }
};

/// True when an array of this type and these dims can be in the rest of the file.
bool is_plausible(const Reader& in, std::int32_t type, const std::vector<std::int32_t>& dims) {
    auto most = in.left; // elements, then columns, ... that the rest can hold
    if (element_size(type) == 0) return false;
    most /= static_cast<std::uint64_t>(element_size(type));
    for (const std::int32_t dim : dims) {
        if (dim <= 0 || static_cast<std::uint64_t>(dim) > most) return false;
        most /= static_cast<std::uint64_t>(dim);
    }
    return true;
}

/// The rest of an entry, whose name has `length` bytes.
bool read_array(Reader& in, std::int32_t length) {
    if (!in.holds(length, 1)) return false;
    std::string name(static_cast<std::size_t>(length), ' ');
    if (!in.bytes(name.data(), name.size()) || name.find('\0') != std::string::npos) return false;
    std::int32_t type = 0, ndim = 0;
    if (!in.integer(type) || !in.integer(ndim) || !in.holds(ndim, sizeof ndim)) return false;
    std::vector<std::int32_t> dims(static_cast<std::size_t>(ndim));
    if (!in.bytes(dims.data(), dims.size() * sizeof ndim) || !is_plausible(in, type, dims))
        return false;
    void* const data = db_create(type, name, dims);
    return data && in.bytes(data, array_byte_size(type, dims));
}

/// Opens a regular file and gives its length; null for anything else (a pipe would wait for ever).
File open_regular(const std::string& path, std::uint64_t& length) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) return nullptr;
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        close(descriptor);
        return nullptr;
    }
    length = static_cast<std::uint64_t>(status.st_size);
    return File(fdopen(descriptor, "rb"));
}

} // namespace

bool db_save(std::string_view name) {
    // Written beside the file and put in its place when whole: a full disk leaves the old one.
    const std::string path = std::string(name) + ".db", unfinished = path + ".new";
    if (write_database(unfinished) && std::rename(unfinished.c_str(), path.c_str()) == 0)
        return true;
    std::remove(unfinished.c_str());
    return false;
}

bool db_read(std::string_view name) {
    Reader in{nullptr, 0};
    const File file = open_regular(std::string(name) + ".db", in.left);
    if (!file) return false;
    in.file = file.get();
    std::int32_t length = 0;
    while (in.integer(length)) {
        if (length == 0) return true;
        if (!read_array(in, length)) return false;
    }
    return false;
}

} // namespace quelor
