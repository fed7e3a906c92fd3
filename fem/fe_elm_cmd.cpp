// The table of the element commands: elem01 to elem40 and pelem01 to pelem40.

#include "elements/element_names.hpp"
#include "kernel/alias.hpp"

#include <vector>

namespace quelor {

/// One line a family of rows.
static constexpr std::initializer_list<Family> families = {
    element_alias_rows,
};

/// Words of the elements, none of which is built yet.
static std::span<const std::string_view> planned_words() {
    static const std::vector<std::string_view> words = [] {
        std::vector<std::string_view> all;
        for (int slot = 1; slot <= element_slots; ++slot) {
            all.push_back(element_word(slot));
            all.push_back(print_element_word(slot));
        }
        return all;
    }();
    return words;
}

const CommandTable& fe_elm_cmd() {
    static const CommandTable table{.name = "fe_elm_cmd",
                                    .topic = "fe_elements",
                                    .heading = "      FINITE ELEMENTS",
                                    .families = list_of(families),
                                    .planned = planned_words()};
    return table;
}

} // namespace quelor
