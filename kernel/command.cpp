// The chain of command tables and the only search in it.

#include "kernel/command.hpp"

#include <algorithm>
#include <unordered_map>

namespace quelor {

namespace {

struct Claim {
    const CommandTable* table = nullptr;
    const Command* command = nullptr; // null for a planned word
};

using WordIndex = std::unordered_map<std::string_view, Claim>;

/// Every word of the chain; the first table that knows a word has it.
const WordIndex& word_index() {
    static const WordIndex index = [] {
        WordIndex words;
        for (const CommandTable* table : command_chain()) {
            for (const Family rows : table->families) {
                for (const Command& command : rows()) {
                    for (const auto word : command.words)
                        words.try_emplace(word, Claim{table, &command});
                }
            }
            for (const auto word : table->planned)
                words.try_emplace(word, Claim{table, nullptr});
        }
        words.erase(""); // unused alias entries
        return words;
    }();
    return index;
}

Claim find_claim(std::span<const CommandTable* const> chain, std::string_view word) {
    const auto found = word_index().find(word);
    if (found == word_index().end()) return {};
    return std::ranges::count(chain, found->second.table) > 0 ? found->second : Claim{};
}

} // namespace

std::span<const CommandTable* const> command_chain() {
    static const CommandTable* const chain[] = {
        &quelorzt_cmd(), &util_cmd(),   &db_cmd(),   &mat_cmd(),  &func_cmd(),
        &fem_cmd(),      &fe_elm_cmd(), &misc_cmd(), &loop_cmd(),
    };
    return chain;
}

const Command* find_command(std::span<const CommandTable* const> chain, std::string_view word) {
    return find_claim(chain, word).command;
}

bool is_planned(std::span<const CommandTable* const> chain, std::string_view word) {
    const Claim claim = find_claim(chain, word);
    return claim.table && !claim.command;
}

} // namespace quelor
