// The examples of the elements' help texts, typed as they stand.
#include "model.hpp"

#include "fem/elemutil.hpp"

#include <sstream>

using namespace quelor;

namespace {

using Help = Model;

/// The lines under "Example", "(blank line)" being one.
std::string example_of(std::string_view help) {
    std::string lines;
    const auto start = help.find("\nExample");
    if (start == std::string_view::npos) return lines;
    std::istringstream text{std::string(help.substr(start + 1))};
    std::string line;
    std::getline(text, line);
    while (std::getline(text, line) && line.starts_with('\t'))
        lines += (line == "\t(blank line)" ? "" : line.substr(1)) + "\n";
    return lines;
}

} // namespace

TEST_F(Help, the_examples_of_the_structural_elements_work) {
    for (const ElementRow& element : element_rows()) {
        if (!element.routine || element.alias.starts_with("hyd_")) continue;
        db_clear();
        script("nodes #=40\nn=1\nn=5 x=4 lgen=1\nn=6 y=1\nn=10 x=4 y=1 lgen=1\nn=11 y=2\n"
               "n=15 x=4 y=2 lgen=1\n\nbcid\n\n");
        const std::string input = example_of(element.help), print = example_of(element.print_help);
        EXPECT_FALSE(input.empty() || print.empty()) << element.alias;
        EXPECT_EQ(script(input).find(" \n"), std::string::npos) << input;
        EXPECT_NE(integer(elem_grp, element.slot), 0) << element.alias;
        EXPECT_GT(script(print).size(), 100u) << print;
        EXPECT_NE(script("form_k\nform_m\n").find("Time to form M"), std::string::npos);
    }
}
