// Completion of command words from the rows of the chain, of array names from the store, of file
// names from the folder.

#include "kernel/completion.hpp"

#include "kernel/alias.hpp"
#include "kernel/command.hpp"
#include "kernel/dbfgen.hpp"

#include <algorithm>
#include <filesystem>

namespace quelor {

namespace {

using Names = std::vector<std::string>;

/// Commands that take files, and the first argument that is one.
struct FileCommand {
    std::string_view word;
    int first_file;
    std::string_view extension; ///< left out of the name that is typed
};
constexpr FileCommand file_commands[] = {
    {"filein", 1, ""},    {"read", 2, ""},    {"write", 2, ""},
    {"readdb", 1, ".db"}, {"rm_file", 1, ""}, {"rename_file", 1, ""},
};

/// Whether a name can be typed as an argument, unquoted, and shown on a terminal as it is.
bool can_be_typed(std::string_view name) {
    const auto is_plain = [](char c) {
        return c != '=' && c != '\'' && c != '&' && c != 0x7f && (c > ' ' || c < '\0');
    };
    return !name.empty() && name.front() != '-' && name.front() != '~' &&
           std::ranges::all_of(name, is_plain);
}

/// Whether `name` is what a person means who has typed `word`.
bool continues(std::string_view name, std::string_view word) {
    const bool hidden = word.empty() && (name.starts_with('.') || name.starts_with('$'));
    return name.starts_with(word) && !hidden && can_be_typed(name);
}

Names command_names(std::string_view word) {
    Names names;
    for (const CommandTable* table : command_chain()) {
        for (const Family rows : table->families) {
            for (const Command& command : rows()) {
                if (command.summary.empty()) continue; // the row of an unused element
                for (const auto each : command.words)
                    if (continues(alias_to_user(each), word))
                        names.emplace_back(alias_to_user(each));
            }
        }
    }
    return names;
}

Names array_names(std::string_view word) {
    Names names;
    for (NamedArray entry = db_next({}); !entry.name.empty(); entry = db_next(entry.name))
        if (continues(entry.name, word)) names.emplace_back(entry.name);
    return names;
}

/// Files and folders; of the files only those with the extension, which is cut off.
Names file_names(std::string_view word, std::string_view extension) {
    namespace fs = std::filesystem;
    Names names;
    const auto slash = word.rfind('/');
    const std::string_view folder = word.substr(0, slash == std::string_view::npos ? 0 : slash + 1);
    std::error_code error;
    fs::directory_iterator entry(folder.empty() ? "." : fs::path(folder), error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        std::string name = entry->path().filename().string();
        std::error_code unreadable;
        if (entry->is_directory(unreadable))
            name += '/';
        else if (name.ends_with(extension))
            name.resize(name.size() - extension.size());
        else
            continue;
        if (!continues(name, word.substr(folder.size()))) continue;
        if (can_be_typed(name.insert(0, folder))) names.push_back(std::move(name));
    }
    return names;
}

std::vector<std::string_view> words_of(std::string_view line) {
    std::vector<std::string_view> words;
    while (true) {
        line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
        if (line.empty()) return words;
        words.push_back(line.substr(0, line.find_first_of(" \t")));
        line.remove_prefix(words.back().size());
    }
}

/// Names for the argument that begins behind `line`.
Names argument_names(std::string_view line, std::string_view word) {
    const auto words = words_of(line);
    if (words.empty()) return command_names(word);
    if (words[0] == "help" || words[0] == "h") return command_names(word);
    const auto is_argument = [](std::string_view each) {
        return !each.starts_with('-') && each.find('=') == std::string_view::npos;
    };
    const auto argument = std::ranges::count_if(words, is_argument); // 1 behind the command word
    const auto file = std::ranges::find(file_commands, words[0], &FileCommand::word);
    if (file != std::end(file_commands) && argument >= file->first_file)
        return file_names(word, file->extension);
    return array_names(word);
}

} // namespace

Completion complete(std::string_view line) {
    Completion completion{.word = line.substr(line.find_last_of(" \t") + 1), .names = {}};
    if (line.find("/*") != std::string_view::npos) return completion;
    if (const auto tilde = completion.word.find('~'); tilde != std::string_view::npos) {
        completion.word.remove_prefix(tilde + 1);
        completion.names = array_names(completion.word);
    } else if (completion.word.empty() || can_be_typed(completion.word)) {
        completion.names =
            argument_names(line.substr(0, line.size() - completion.word.size()), completion.word);
    }
    std::ranges::sort(completion.names);
    return completion;
}

std::string_view common_beginning(const std::vector<std::string>& names) {
    if (names.empty()) return {};
    std::string_view common = names.front();
    for (const std::string& name : names) {
        const auto end = std::ranges::mismatch(common, name).in1;
        common = common.substr(0, as_size(end - common.begin()));
    }
    const auto is_inside_character = [&] { // of UTF-8
        return common.size() < names.front().size() &&
               (names.front()[common.size()] & 0xc0) == 0x80;
    };
    while (is_inside_character())
        common.remove_suffix(1);
    return common;
}

} // namespace quelor
