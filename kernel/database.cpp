// The database file "<name>.db": the arrays in name order, each as length of name (a 32-bit
// integer), name and the entry of an array file; closed by a length of 0.
#include "kernel/array_file.hpp"
#include "kernel/project.hpp"

namespace quelor {

static void write_named_array(ArrayWriter& out, const NamedArray& entry) {
    out.integer(static_cast<std::int32_t>(entry.name.size()));
    out.bytes(entry.name.data(), entry.name.size());
    out.array(entry.array);
}

static bool write_database(const std::string& path) {
    ArrayWriter out{File(std::fopen(path.c_str(), "wb"))};
    for (NamedArray entry = db_next({}); !entry.name.empty() && out.good;
         entry = db_next(entry.name))
        write_named_array(out, entry);
    out.integer(0);
    return out.close();
}

/// The rest of an entry, whose name has `length` bytes.
static bool read_named_array(ArrayReader& in, std::int32_t length) {
    if (!in.holds(length, 1)) return false;
    std::string name(as_size(length), ' ');
    return in.bytes(name.data(), name.size()) && name.find('\0') == std::string::npos &&
           in.array(name);
}

bool db_save(std::string_view name) {
    // Written beside the file and put in its place when whole: a full disk leaves the old one.
    const std::string path = std::string(name) + ".db", unfinished = path + ".new";
    if (write_database(unfinished) && std::rename(unfinished.c_str(), path.c_str()) == 0)
        return true;
    std::remove(unfinished.c_str());
    return false;
}

bool db_read(std::string_view name) {
    ArrayReader in = open_array_file(std::string(name) + ".db");
    if (!in.file) return false;
    std::int32_t length = 0;
    while (in.integer(length)) {
        if (length == 0) return true;
        if (!read_named_array(in, length)) return false;
    }
    return false;
}

} // namespace quelor
