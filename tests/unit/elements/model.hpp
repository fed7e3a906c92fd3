// Fixture of tests that run whole models: scripts of commands with their records.
#pragma once

#include "../support/session.hpp"

#include "fem/formkm.hpp"
#include "fem/nodes.hpp"
#include "kernel/alias.hpp"
#include "kernel/main_loop.hpp"
#include "kernel/project.hpp"
#include "kernel/utilities.hpp"

#include <string>

namespace quelor {

class Model : public Session {
protected:
    Model() {
        testing::FLAGS_gtest_death_test_style = "fast";
        set_project_name("job");
    }

    /// Runs the commands, each followed by its records; what appears on the screen.
    static std::string script(const std::string& text) {
        give_input(text);
        return screen(run_commands);
    }
    /// Runs the script, which must take the fatal path with the message and keep the database.
    static void expect_fatal(const std::string& text, const std::string& message) {
        const auto fails = [&] {
            detach();
            give_input(text);
            run_commands();
        };
        EXPECT_EXIT(fails(), testing::ExitedWithCode(0), message) << text;
        std::error_code none;
        EXPECT_TRUE(std::filesystem::remove("job.db", none)) << text;
    }

    /// Value of a vector over the equations at a degree of freedom; 0 without an equation.
    static double at(std::string_view vector, int dof, int node) {
        const int e = as_matrix<std::int32_t>(find_array(node_eqs))(dof, node);
        return e > 0 ? as_matrix<double>(find_array(vector))(e) : 0;
    }
    static double value(std::string_view array, int i, int j = 1) {
        return as_matrix<double>(find_array(array))(i, j);
    }
    static int integer(std::string_view array, int i, int j = 1) {
        return as_matrix<std::int32_t>(find_array(array))(i, j);
    }

private:
    static void run_commands() {
        for (;;) {
            read_record("", "", false);
            const std::string word(alias_to_internal(get_command_word()));
            if (word == "return") break;
            if (!word.empty()) dispatch(command_chain(), word);
        }
        close_all_inputs();
    }
};

} // namespace quelor
