#include "../support/files.hpp"
#include "../support/session.hpp"
#include "kernel/project.hpp"

#include <limits>
#include <map>
#include <new>
#include <random>
#include <sys/sysinfo.h>

namespace quelor {
namespace {

struct Store : Session {};

std::vector<std::string> names() {
    std::vector<std::string> list;
    for (NamedArray entry = db_next({}); !entry.name.empty(); entry = db_next(entry.name))
        list.emplace_back(entry.name);
    return list;
}

void* create(TypeCode type, std::string_view name, std::vector<std::int32_t> dims) {
    return db_create(type, name, dims);
}

using Names = std::vector<std::string>;

TEST_F(Store, IsWalkedInTheOrderOfUnsignedBytes) {
    for (const char* name : {"b", "\xe9", "B", ".x", "ab", "a", "$t", "1"})
        create(type_real, name, {1});
    EXPECT_EQ(names(), (Names{"$t", ".x", "1", "B", "a", "ab", "b", "\xe9"}));
    EXPECT_TRUE(db_next("aa").name.empty()) << "an absent name has no successor";
    EXPECT_TRUE(db_next("\xe9").name.empty());
    db_clear();
    EXPECT_TRUE(db_next({}).name.empty());
}

TEST_F(Store, ReplacesAnArrayByZerosOfTheNewShape) {
    create_int_scalar("a", 7);
    const auto again = create_matrix<double>("a", 5, 0);
    EXPECT_EQ(db_find("a").ndim(), 1);
    EXPECT_EQ(db_find("a").type, type_real);
    for (const double x : again.all())
        EXPECT_EQ(x, 0);
    // A request made of the array's own dims and data must survive the loss of the old block.
    create(type_real, "a", {db_find("a").dims.begin(), db_find("a").dims.end()});
    EXPECT_TRUE(db_create(type_integer, "a", db_find("a").dims));
    EXPECT_EQ(db_find("a").size(), 5);
}

TEST_F(Store, KeepsBlocksInPlaceAlignedAndZeroed) {
    auto* const small = static_cast<double*>(create(type_real, "m", {3}));
    auto* const large = static_cast<double*>(create(type_real, "n", {1000, 1000}));
    small[2] = large[999999] = 1;
    for (const char* name : {"a", "z", "m1"})
        create(type_real, name, {100});
    db_delete("a");
    EXPECT_EQ(db_find("m").data, small);
    EXPECT_EQ(db_find("n").data, large);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(small) % 64, 0U);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(large) % 64, 0U);
    EXPECT_EQ(large[0] + large[500000], 0);
    EXPECT_EQ(db_memory(), 8 * (3 + 1000000 + 100 + 100));
}

TEST_F(Store, RefusesWhatCannotBeAndLeavesNoArrayOfThatName) {
    constexpr auto most = std::numeric_limits<std::int32_t>::max();
    const std::vector<std::int32_t> sizes[] = {
        {0},         {5, 0}, {-1}, {-2, -3}, {65536, 65536, 65536, 65536}, {most, most, most},
        {most, most}};
    for (const auto& dims : sizes) {
        create_int_scalar("a", 1);
        EXPECT_EQ(db_create(type_real, "a", dims), nullptr);
        EXPECT_FALSE(db_find("a"));
    }
    for (const int type : {100, 101, 2, -1, 17}) {
        EXPECT_EQ(db_create(type, "a", std::vector<std::int32_t>{1}), nullptr);
        EXPECT_FALSE(db_find("a"));
    }
    EXPECT_EQ(db_create(type_real, "", std::vector<std::int32_t>{1}), nullptr);
}

TEST_F(Store, PromisesNoMoreThanTheMachineHas) {
    struct sysinfo machine {};
    sysinfo(&machine);
    const double memory = static_cast<double>(machine.totalram + machine.totalswap) *
                          static_cast<double>(machine.mem_unit);
    const std::int32_t n = 1 << 27; // a gigabyte, never touched
    int made = 0;
    while (create(type_real, "block" + std::to_string(made), {n}))
        ++made;
    EXPECT_LE(static_cast<double>(made) * 8 * n, memory);
    EXPECT_EQ(names().size(), static_cast<std::size_t>(made));
}

TEST_F(Store, CopiesAndRenames) {
    create_real_scalar("a", 2.5);
    EXPECT_TRUE(db_copy("a", "b"));
    EXPECT_EQ(*static_cast<double*>(db_find("b").data), 2.5);
    EXPECT_TRUE(db_copy("a", "a")) << "onto itself: the shape stays, the values are gone";
    EXPECT_EQ(*static_cast<double*>(db_find("a").data), 0);
    EXPECT_FALSE(db_copy("none", "c"));

    EXPECT_TRUE(db_rename("b", "a")) << "the array already there is removed";
    EXPECT_EQ(*static_cast<double*>(db_find("a").data), 2.5);
    EXPECT_TRUE(db_rename("a", "zz"));
    create_int_scalar("y", 1);
    EXPECT_EQ(names(), (Names{"y", "zz"}));
    EXPECT_FALSE(db_rename("none", "y"));
    EXPECT_TRUE(db_find("y"));
    db_rename("y", "y");
    EXPECT_FALSE(db_find("y")) << "a move onto itself loses the array";
}

TEST_F(Store, AResultMayBearTheNameOfAnInputAndIsThereWhenItIsPlaced) {
    create_real_scalar("in", 2.5);
    create_real_scalar("$work", 7);
    {
        Result result("in", "$work", {"in", "other"});
        const auto doubled = result.matrix<double>(1, 2);
        EXPECT_EQ(result.name(), "$work$") << "beside the array that bears the name of the work";
        doubled(1, 2) = 2 * *static_cast<double*>(db_find("in").data);
        result.place();
        EXPECT_EQ(as_matrix<double>(db_find("in"))(1, 2), 5);
    }
    EXPECT_EQ(Result("in", "$w", {"other"}).name(), "in") << "no input: no second block";
    EXPECT_TRUE(db_find("in")) << "nothing was made of it";
    EXPECT_EQ(names(), (Names{"$work", "in"}));
}

TEST_F(Store, AResultThatIsGivenUpLeavesNothing) {
    create_real_scalar("a", 1);
    const auto give_up = [](Result result) {
        result.create(type_integer, {3});
        throw std::bad_alloc();
    };
    EXPECT_THROW(give_up(Result("a", "$work")), std::bad_alloc);
    EXPECT_EQ(names(), Names{"a"});
    EXPECT_THROW(give_up(Result("b", "$work", {"a"})), std::bad_alloc);
    EXPECT_EQ(names(), Names{"a"});
}

TEST_F(Store, StartsAnewWithAllStateOfTheProcess) {
    create_int_scalar("a", 1);
    set_project_name("p");
    set_echo_flag(false);
    ASSERT_TRUE(open_log());
    ASSERT_EQ(fortopen_ext(unit_output, ".out", "UNKNOWN", "FORMATTED"), 0);
    write_text(unit_output, "held back");
    give_input("one\ntwo\n");
    set_record("ls");
    reset_process_state();
    EXPECT_TRUE(names().empty());
    EXPECT_TRUE(project_name().empty() && record_text().empty() && echo_flag());
    EXPECT_TRUE(input_is_console() && !log_is_open());
    EXPECT_EQ(file_bytes("p.out"), "held back");
    write_text(unit_output, "more");
    flush_unit(unit_output);
    EXPECT_EQ(file_bytes("p.out"), "held back");
}

TEST_F(Store, DeletesByPrefix) {
    for (const char* name : {"mat", "mat1", "ma", "matrix", "mb"})
        create_int_scalar(name, 1);
    db_delete_prefix("mat*");
    EXPECT_EQ(names(), (Names{"ma", "mb"}));
    db_delete_prefix("");
    db_delete("absent");
    EXPECT_EQ(names().size(), 2U);
    db_delete_prefix("*");
    EXPECT_TRUE(names().empty());
}

TEST_F(Store, AgreesWithAModelUnderRandomOperations) {
    std::mt19937 random(7);
    std::map<std::string, int> model; // name to value
    const auto any_name = [&] { return std::string(1, static_cast<char>('a' + random() % 6)); };
    for (int step = 0; step < 3000; ++step) {
        const std::string p = any_name(), q = any_name();
        switch (random() % 4) {
        case 0:
            create_int_scalar(p, step);
            model[p] = step;
            break;
        case 1:
            db_delete(p);
            model.erase(p);
            break;
        case 2:
            ASSERT_EQ(db_rename(p, q), model.contains(p));
            if (model.contains(p)) {
                const int value = model[p];
                model.erase(p);
                if (p != q) model[q] = value;
            }
            break;
        default:
            ASSERT_EQ(db_copy(p, q), model.contains(p));
            if (model.contains(p)) model[q] = p == q ? 0 : model[p];
        }
        std::map<std::string, int> found;
        for (const auto& name : names())
            found[name] = *static_cast<std::int32_t*>(db_find(name).data);
        ASSERT_EQ(found, model) << "step " << step;
    }
}

TEST_F(Store, SpeaksThroughItsWrappers) {
    create_array3<double>("cube", 2, 3, 4);
    ArrayRef cube;
    EXPECT_NE(screen([&] { cube = find_array_2d("cube"); }).find("FOUND ARRAY WITH DIMENSIONS > 2"),
              std::string::npos);
    EXPECT_EQ(cube.rows(), 2);
    EXPECT_EQ(cube.cols(), 3);
    EXPECT_EQ(screen([] { create_array(type_pointer, "p", {1}); }),
              "     \n      Don't know how to create type\n");
    EXPECT_FALSE(array_exists("p"));
    create_array_2d(type_real, "v", 5, 0);
    EXPECT_EQ(find_array("v").ndim(), 1);
}

TEST_F(Store, EndsTheProgramWhenAnArrayCannotBeMade) {
    GTEST_FLAG_SET(death_test_style, "fast");
    EXPECT_EXIT(
        {
            detach();
            create_array_2d(type_real, "bad", 0, 0);
        },
        testing::ExitedWithCode(0),
        "Fatal Error \\*\\*\\*\\*\n      Unable to create bad\n      Dimensions:         0\n");
    EXPECT_EXIT(
        {
            detach();
            create_array(type_real, "bad", {-1, 2});
        },
        testing::ExitedWithCode(0), "Dimensions:        -1         2\n");
}

} // namespace
} // namespace quelor
