// The database file "<name>.db": the arrays in name order, each as length of name (a 32-bit
// integer), name and the entry of an array file; closed by a length of 0.
#include "kernel/array_file.hpp"
#include "kernel/project.hpp"

#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace quelor {

static void write_named_array(ArrayWriter& out, const NamedArray& entry) {
    out.integer(static_cast<std::int32_t>(entry.name.size()));
    out.bytes(entry.name.data(), entry.name.size());
    out.array(entry.array);
}

/// The file that a name stands for by way of symbolic links, whether it is there or not.
static std::filesystem::path link_target(std::filesystem::path path) {
    std::error_code error;
    for (int links = 0; links < 40 && std::filesystem::is_symlink(path, error); ++links)
        path = path.parent_path() / std::filesystem::read_symlink(path, error);
    return path;
}

/// The permissions of the file to be written: those of the one there is, or of any new file; none
/// when what there is must not be replaced.
static std::optional<mode_t> permissions(const std::string& path) {
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0) {
        const mode_t withheld = umask(0);
        umask(withheld);
        return 0666 & ~withheld;
    }
    const bool writable = (status.st_mode & 0222) != 0 && access(path.c_str(), W_OK) == 0;
    if (!S_ISREG(status.st_mode) || !writable) return {};
    return status.st_mode & 0777;
}

static bool write_database(int descriptor) {
    ArrayWriter out{File(fdopen(descriptor, "wb"))};
    for (NamedArray entry = db_next({}); !entry.name.empty() && out.good;
         entry = db_next(entry.name))
        write_named_array(out, entry);
    out.integer(0);
    return out.sync() && out.close();
}

/// The rest of an entry, whose name has `length` bytes.
static bool read_named_array(ArrayReader& in, std::int32_t length) {
    if (!in.holds(length, 1)) return false;
    std::string name(as_size(length), ' ');
    return in.bytes(name.data(), name.size()) && name.find('\0') == std::string::npos &&
           in.array(name);
}

bool db_save(std::string_view name) {
    // Written beside the file, under a name of its own, and put in its place when whole and on the
    // disk: neither a full disk nor a power cut leaves less than the old one.
    const std::string path = link_target(std::string(name) + ".db");
    const auto mode = permissions(path);
    if (!mode) return false;
    std::string unfinished = path + ".XXXXXX";
    const int descriptor = mkostemp(unfinished.data(), O_CLOEXEC);
    if (descriptor < 0) return false;
    fchmod(descriptor, *mode);
    if (write_database(descriptor) && std::rename(unfinished.c_str(), path.c_str()) == 0)
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
