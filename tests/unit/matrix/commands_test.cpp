// Every command of the matrix tables, as they stand: the examples of its help text work when typed,
// and no array of any type and shape, present or absent, brings the session down.

#include "../support/session.hpp"
#include "kernel/utilities.hpp"
#include "matrix/fileio.hpp"

#include <map>
#include <sstream>

namespace quelor {
namespace {

std::vector<const Command*> matrix_commands() {
    std::vector<const Command*> commands;
    for (const CommandTable* table : {&mat_cmd(), &func_cmd(), &misc_cmd()})
        for (const Family family : table->families)
            for (const Command& command : family())
                commands.push_back(&command);
    return commands;
}

struct Commands : Session {};

// --- examples -----------------------------------------------------------------------------------

/// The lines under "Example" without the remarks in brackets among them.
std::string example_of(std::string_view help) {
    std::string lines;
    const auto start = help.find("\nExample\n");
    if (start == std::string_view::npos) return lines;
    std::istringstream text{std::string(help.substr(start + 9))};
    for (std::string line; std::getline(text, line) && line.starts_with('\t');)
        if (!line.starts_with("\t(")) lines += line.substr(1) + "\n";
    return lines;
}

/// What the examples presume; a word has its own when these arrays do not suit it.
std::string prelude_of(std::string_view word) {
    static const std::map<std::string_view, std::string> own = {
        {"dim_reduce", "zero a r=2 c=2 t=3\n"}, {"print", "zero a r=12 c=5\n"},
        {"printf", "zero a r=12 c=5\n"},        {"printi", "zeroi codes r=3 c=2\n"},
        {"to_real", "zeroi k r=2 c=2\n"},       {"to_vector", "zero a c=3\n"},
    };
    const auto found = own.find(word);
    if (found != own.end()) return found->second;
    return "ident a r=3\nident b r=3\nzero re r=2 c=2\nzero im r=2 c=2\nidenti k r=3\nidentc z r=3\n";
}

/// A message begins with a line of blanks, unlike all that a command reports.
bool has_message(const std::string& output) {
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);)
        if ((!line.empty() && line.find_first_not_of(' ') == std::string::npos) ||
            line.ends_with(" not found"))
            return true;
    return false;
}

TEST_F(Commands, ExamplesOfTheHelpTextsWorkAsTheyStand) {
    auto commands = matrix_commands();
    for (const Command& command : fileio_rows())
        commands.push_back(&command);
    for (const Command* command : commands) {
        const auto word = command->words[0];
        const std::string example = example_of(command->help);
        EXPECT_FALSE(example.empty()) << word;
        db_clear();
        EXPECT_FALSE(has_message(type(prelude_of(word)))) << word;
        const std::string output = type(example);
        if (word == "psolve16") continue; // a message is all that it does
        EXPECT_FALSE(has_message(output)) << example << output;
    }
}

// --- any array ----------------------------------------------------------------------------------

constexpr TypeCode types[] = {type_void,   type_character, type_integer, type_real,
                              type_real16, type_complex4,  type_complex8};
const std::vector<std::vector<std::int32_t>> shapes = {
    {1}, {3}, {1, 1}, {3, 3}, {2, 3}, {1, 3}, {3, 1}, {2, 3, 2}, {2, 1, 3, 2},
};

struct Array {
    TypeCode type;
    std::size_t shape;

    std::string argument() const {
        return " a" + std::to_string(type) + "_" + std::to_string(shape);
    }
};

/// Makes the array, with some value that is not zero in every element.
void make(const Array& array) {
    const std::string name = array.argument().substr(1);
    create_array(array.type, name, shapes[array.shape]);
    const auto fill = [made = find_array(name)]<class T>(T) {
        float value = 1;
        if (made.is(type_code<T>))
            for (T& element : as_span<T>(made))
                element = static_cast<T>(value = 7 - value / 2);
    };
    fill(char{}), fill(std::int32_t{}), fill(double{}), fill(0.0L), fill(Complex4{});
    fill(Complex8{}); // void: zeros
}

struct Arguments {
    std::string text;
    std::vector<Array> arrays;
};

/// No array, one in every place, and two of one type or of one shape; results under new names and
/// under those of the inputs.
std::vector<Arguments> all_arguments() {
    std::vector<Arguments> lists = {{"", {}}, {" none", {}}, {" none none none none", {}}};
    const auto add_pair = [&lists](const Array& first, const Array& second) {
        const std::string a = first.argument(), b = second.argument();
        lists.push_back({a + b, {first, second}});
        lists.push_back({a + b + " new", {first, second}});
        lists.push_back({a + b + a + " new", {first, second}});
    };
    for (const TypeCode type : types) {
        for (std::size_t shape = 0; shape < shapes.size(); ++shape) {
            const Array array{type, shape};
            const std::string a = array.argument();
            for (const std::string& text : {a, a + " none", " none" + a, a + a, a + a + a,
                                            a + a + a + " new", " ~" + a.substr(1) + " ~none" + a})
                lists.push_back({text, {array}});
            for (std::size_t other = 0; other < shapes.size(); ++other)
                if (other != shape) add_pair(array, {type, other});
            for (const TypeCode other : types)
                if (other != type) add_pair(array, {other, shape});
        }
    }
    return lists;
}

/// Parameters in and out of range, and without sense.
constexpr const char* parameters[] = {
    "",
    " r=2 c=1 n=1 x=1 v=2 e=1,1 key=1 index=1 p=2 s=ab",
    " r=1 c=2 t=2 table=1 n=2,2 m=1 x=2 y=1 col=2 v=1,1 key=2,1 -reverse -abs -gt -inv -pp tol=1",
    " r=-1 c=-1 t=-1 n=-1 m=-1 x=-1 y=-1 e=0,9 key=-1,9 index=-1 p=-1 -trunc -null -l2 d=1 f=1",
    " r=~a4_1 c=~a8_3 n=~a16_1 v=~a1_1 x=~none tol=~a8_0 e=~a4_3 key=~a4_5 p=~a9_1",
    " r=9 c=9 t=9 n=9,9 m=9 x=9 y=9 e=9,9 key=9 index=9 p=9 table=9 -max -lt -inverse d=9",
};

TEST_F(Commands, NoArrayOfAnyTypeAndShapeEndsTheSession) {
    // Commands that ask for data records get blank ones.
    const auto give_records = [] {
        if (!input_is_console() && !input_has_ended()) return;
        close_all_inputs();
        give_input(std::string(100000, '\n'));
    };
    const auto lists = all_arguments();
    for (const Command* command : matrix_commands()) {
        const std::string word(command->words[0]);
        for (const char* parameter : parameters) {
            screen([&] {
                for (const auto& [text, arrays] : lists) {
                    db_clear();
                    for (const Array& array : arrays)
                        make(array);
                    give_records();
                    set_record(word + text + parameter);
                    command->run(word);
                }
            });
        }
    }
    EXPECT_EQ(type("setr alive v=1\n"), "");
    EXPECT_EQ(get_real("alive"), 1);
}

} // namespace
} // namespace quelor
