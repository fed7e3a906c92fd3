// The history file. Only the user may read it; sessions that run side by side add to one file.

#include "kernel/history.hpp"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace quelor {

namespace {

namespace fs = std::filesystem;

/// The value of a variable that holds an absolute path; other values do not count.
fs::path folder_of(const char* variable) {
    const char* const value = std::getenv(variable);
    fs::path path = value ? value : "";
    return path.is_absolute() ? path : fs::path();
}

void write_at(const std::string& file, int flags, std::string_view text) {
    const int descriptor =
        open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NONBLOCK | flags, S_IRUSR | S_IWUSR);
    if (descriptor < 0) return;
    [[maybe_unused]] const ssize_t written = write(descriptor, text.data(), text.size());
    close(descriptor);
}

/// Puts the lines in the file's place in one step.
void replace_file(const std::string& file, const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += line + '\n';
    const std::string draft = file + '.' + std::to_string(getpid());
    write_at(draft, O_TRUNC, text);
    std::error_code error;
    if (fs::file_size(draft, error) == text.size() && !error) fs::rename(draft, file, error);
    fs::remove(draft, error);
}

} // namespace

std::string history_file() {
    fs::path folder = folder_of("XDG_STATE_HOME");
    if (folder.empty() && !folder_of("HOME").empty()) folder = folder_of("HOME") / ".local/state";
    return folder.empty() ? "" : (folder / "quelor-zt" / "history").string();
}

std::vector<std::string> read_history(const std::string& file, std::size_t limit) {
    std::vector<std::string> lines;
    std::error_code error;
    if (!fs::is_regular_file(file, error)) return lines;
    std::ifstream input(file);
    for (std::string line; std::getline(input, line);)
        lines.push_back(line);
    const bool overgrown = lines.size() > 2 * limit;
    if (lines.size() > limit)
        lines.erase(lines.begin(), lines.end() - static_cast<std::ptrdiff_t>(limit));
    if (overgrown) replace_file(file, lines);
    return lines;
}

void append_history(const std::string& file, std::string_view line) {
    if (file.empty()) return;
    std::error_code error;
    fs::create_directories(fs::path(file).parent_path(), error);
    if (!error) write_at(file, O_APPEND, std::string(line) + '\n');
}

} // namespace quelor
