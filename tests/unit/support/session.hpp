// Fixture of tests that run commands: an empty folder and an empty store, commands given as lines,
// data records from a file, what appears on the screen as text.
#pragma once

#include "kernel/alias.hpp"
#include "kernel/command.hpp"
#include "kernel/dbfgen.hpp"
#include "kernel/fortfile.hpp"
#include "kernel/gencom.hpp"
#include "kernel/iof.hpp"
#include "kernel/process_state.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <unistd.h>

namespace quelor {

class Session : public testing::Test {
protected:
    using Rows = std::span<const Command>;

    explicit Session(std::initializer_list<Rows> families = {}) : families_(families) {
        std::string folder = testing::TempDir() + "quelorXXXXXX";
        folder_ = mkdtemp(folder.data());
        std::filesystem::current_path(folder_);
        reset_process_state();
        // The fatal path ends the program with status 0, which would pass for success.
        [[maybe_unused]] static const int once = std::atexit([] {
            if (in_test) std::_Exit(1);
        });
        in_test = true;
    }
    ~Session() override {
        in_test = false;
        reset_process_state();
        std::filesystem::current_path("/");
        std::filesystem::remove_all(folder_);
    }

    /// What `action` writes on the screen.
    template <class Action> static std::string screen(Action action) {
        flush_unit(unit_screen);
        testing::internal::CaptureStdout();
        action();
        flush_unit(unit_screen);
        return testing::internal::GetCapturedStdout();
    }
    /// The records of a file become the input.
    static void give_input(const std::string& text) {
        std::ofstream("records") << text;
        ASSERT_GT(open_input_file("records", false), 0);
    }
    /// The text becomes what the user types.
    static void give_console(const std::string& text) {
        std::ofstream("console") << text;
        ASSERT_NE(std::freopen("console", "r", stdin), nullptr);
    }
    /// Runs one command line, with the data records that it reads; what appears on the screen.
    std::string run(std::string_view line, const std::string& records = {}) {
        if (!records.empty()) give_input(records);
        set_record(line);
        const std::string word = get_command_word();
        const Command* const row = find(word);
        EXPECT_NE(row, nullptr) << line;
        std::string output = screen([&] { row->run(word); });
        close_all_inputs();
        return output;
    }
    /// Runs lines of commands and their records as a command file, by the words that users type;
    /// what appears on the screen.
    static std::string type(const std::string& lines) {
        give_input(lines + "\n");
        std::string output = screen([] { obey(); });
        close_all_inputs();
        return output;
    }
    /// Obeys the input to its end.
    static void obey() {
        for (read_record("", "", false); !input_has_ended(); read_record("", "", false)) {
            const std::string word = get_command_word();
            if (word.empty()) continue;
            const Command* const command = find_command(command_chain(), alias_to_internal(word));
            ASSERT_NE(command, nullptr) << word;
            command->run(command->words[0]);
        }
    }
    /// For death tests, whose child shares the files of its parent: the screen goes to the error
    /// output, and nothing is waited for.
    static void detach() {
        in_test = false;
        dup2(STDERR_FILENO, STDOUT_FILENO);
        ASSERT_NE(std::freopen("/dev/null", "r", stdin), nullptr);
    }
    /// Runs one command line in the child of a death test.
    void run_detached(std::string_view line) {
        detach();
        set_record(line);
        const std::string word = get_command_word();
        find(word)->run(word);
    }

    const Command* find(std::string_view word) const {
        for (const Rows& rows : families_)
            for (const Command& row : rows)
                for (const auto& name : row.words)
                    if (name == word) return &row;
        return nullptr;
    }

private:
    static inline bool in_test = false;

    std::vector<Rows> families_;
    std::filesystem::path folder_;
};

} // namespace quelor
