// Entries of array files and of the database file, written and read.
#include "kernel/array_file.hpp"

#include <bit>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace quelor {

static_assert(std::endian::native == std::endian::little, "the file's integers are little-endian");

void ArrayWriter::array(const ArrayRef& array) {
    integer(array.type);
    integer(array.ndim());
    bytes(array.dims.data(), array.dims.size_bytes());
    bytes(array.data, array_byte_size(array.type, array.dims));
}

bool ArrayWriter::sync() {
    return good && std::fflush(file.get()) == 0 && fsync(fileno(file.get())) == 0;
}

/// True when an array of this type and these dims can be in the rest of the file.
static bool is_plausible(std::uint64_t left, std::int32_t type,
                         const std::vector<std::int32_t>& dims) {
    if (element_size(type) == 0) return false;
    auto most = left / static_cast<std::uint64_t>(element_size(type)); // elements, then columns ...
    for (const std::int32_t dim : dims) {
        if (dim <= 0 || static_cast<std::uint64_t>(dim) > most) return false;
        most /= static_cast<std::uint64_t>(dim);
    }
    return true;
}

bool ArrayReader::array(std::string_view name) {
    std::int32_t type = 0, ndim = 0;
    if (!integer(type) || !integer(ndim) || !holds(ndim, sizeof ndim)) return false;
    std::vector<std::int32_t> dims(as_size(ndim));
    if (!bytes(dims.data(), dims.size() * sizeof ndim) || !is_plausible(left, type, dims))
        return false;
    void* const data = db_create(type, name, dims);
    return data && bytes(data, array_byte_size(type, dims));
}

ArrayReader open_array_file(const std::string& path) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) return {};
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        close(descriptor);
        return {};
    }
    return {File(fdopen(descriptor, "rb")), static_cast<std::uint64_t>(status.st_size)};
}

} // namespace quelor
