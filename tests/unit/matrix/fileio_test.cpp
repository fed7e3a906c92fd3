#include "matrix/fileio.hpp"

#include "../support/files.hpp"
#include "../support/session.hpp"
#include "kernel/project.hpp"
#include "kernel/utilities.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace quelor {
namespace {

struct FileIo : Session {
    FileIo() : Session({fileio_rows()}) { set_project_name("project"); }
};

bool same(const ArrayRef& a, const ArrayRef& b) {
    return a && b && a.type == b.type && std::ranges::equal(a.dims, b.dims) &&
           std::memcmp(a.data, b.data, array_byte_size(a.type, a.dims)) == 0;
}

TEST_F(FileIo, WrittenArrayHasTheFieldsOfAnArrayFile) {
    const auto k = create_matrix<std::int32_t>("k", 2, 1);
    k(1) = 7;
    k(2) = -1;
    EXPECT_EQ(run("write k k.bin"), "");
    EXPECT_EQ(file_bytes("k.bin"), int_bytes({4, 2, 2, 1, 7, -1}));
}

TEST_F(FileIo, ReadGivesBackWhatWasWrittenInTypeAndDimensions) {
    create_matrix<double>("r", 3, 2)(3, 2) = -1.5;
    create_array3<Complex8>("z", 1, 2, 3)(1, 2, 3) = {1, 2};
    create_matrix<long double>("q", 2, 0)(2) = 0.1L;
    create_matrix<Complex4>("w", 2, 0)(2) = {3, 4};
    create_string_array("text", "s");
    for (const std::string name : {"r", "z", "q", "w", "s"}) {
        EXPECT_EQ(run("write " + name + " file -ext"), "");
        EXPECT_EQ(run("read copy project.file"), "");
        EXPECT_TRUE(same(find_array("copy"), find_array(name))) << name;
    }
    EXPECT_EQ(run("read r file -ext"), "");
    EXPECT_TRUE(same(find_array("r"), find_array("s")));
}

TEST_F(FileIo, ReadTakesTheFirstOfSeveralEntries) {
    create_int_scalar("a", 1);
    create_real_scalar("b", 2);
    for (const char* line : {"write a f -a", "write b f -a", "read c f"})
        EXPECT_EQ(run(line), "");
    EXPECT_EQ(file_bytes("f").size(), 20u + 24u);
    EXPECT_EQ(get_int("c"), 1);
}

TEST_F(FileIo, TextHasALineForEachRow) {
    const auto k = create_matrix<std::int32_t>("k", 2, 2);
    std::ranges::copy(std::initializer_list<std::int32_t>{1, -12, 3, 1234567890}, k.data);
    EXPECT_EQ(run("write k f -f"), "");
    EXPECT_EQ(file_bytes("f"), "       1       3\n     -121234567890\n");
    EXPECT_EQ(run("write k f -f -tab"), "");
    EXPECT_EQ(file_bytes("f"), "1\t3\t\n-12\t1234567890\t\n");
    const auto z = create_array3<Complex8>("z", 1, 1, 2);
    z(1, 1, 1) = {1, -0.25};
    z(1, 1, 2) = {1e100, 0};
    EXPECT_EQ(run("write z f -f -a"), "");
    EXPECT_EQ(file_bytes("f"), "1\t3\t\n-12\t1234567890\t\n"
                               "  1.0000e+00 -2.5000e-01\n 1.0000e+100  0.0000e+00\n");
    EXPECT_EQ(run("write z f -f -tab"), "");
    EXPECT_EQ(file_bytes("f"), "1.0000e+00\t-2.5000e-01\t\n1.0000e+100\t0.0000e+00\t\n");
}

TEST_F(FileIo, RealsOfTextAreThoseOfTheCLibrary) {
    const std::vector<double> values{0.0,     -0.0,     1.00005,  9.99995,   2.5e-310,    -1e300,
                                     0.00125, 99999.95, HUGE_VAL, -HUGE_VAL, std::nan("")};
    std::ranges::copy(values, create_matrix<double>("v", 1, static_cast<int>(values.size())).data);
    std::string expected;
    for (const double value : values) {
        char field[32];
        std::snprintf(field, sizeof field, "%12.4e", value);
        expected += field;
    }
    EXPECT_EQ(run("write v f -f"), "");
    EXPECT_EQ(file_bytes("f"), expected + "\n");
}

TEST_F(FileIo, LongRowsPassTheBuffer) {
    create_matrix<std::int32_t>("k", 1, 300000)(1, 300000) = 5;
    EXPECT_EQ(run("write k f -f"), "");
    const std::string text = file_bytes("f");
    EXPECT_EQ(text.size(), 8u * 300000u + 1u);
    EXPECT_TRUE(text.ends_with("       5\n"));
}

TEST_F(FileIo, WhatCannotBeWrittenSaysSo) {
    const std::string failed = "     \n      Write failed\n";
    create_string_array("text", "s");
    EXPECT_EQ(run("write s f -f"), failed);
    EXPECT_FALSE(std::filesystem::exists("f"));
    EXPECT_EQ(run("write s nowhere/f"), failed);
    EXPECT_EQ(run("write s /dev/full"), failed);
    EXPECT_EQ(run("write absent f"), "      absent not found\n");
    EXPECT_EQ(run("write s"), "     \n      Two arguments required\n");
}

TEST_F(FileIo, ForeignAndDamagedFilesLeaveTheDatabaseAsItWas) {
    create_int_scalar("a", 1);
    EXPECT_EQ(run("write a whole"), "");
    const std::string whole = file_bytes("whole");
    std::vector<std::string> damaged{"hello, world; this is not an array file",
                                     int_bytes({8, 2, 1 << 30, 1 << 30, 0}),
                                     int_bytes({4, 1, -1, 0}),
                                     int_bytes({4, 1, 0}),
                                     int_bytes({4, 0, 1}),
                                     int_bytes({4, -5, 1}),
                                     int_bytes({4, 2000000000, 1}),
                                     int_bytes({5, 1, 1, 1})};
    for (std::size_t length = 0; length < whole.size(); ++length)
        damaged.push_back(whole.substr(0, length));
    for (const std::string& bytes : damaged) {
        put_file("bad", bytes);
        EXPECT_NE(run("read a bad").find("Read failed: no whole array in file bad"),
                  std::string::npos);
        EXPECT_EQ(get_int("a"), 1);
        EXPECT_EQ(db_next("a").name, "");
    }
    EXPECT_NE(run("read a absent").find("Read failed: cannot open file absent"), std::string::npos);
    EXPECT_NE(run("read a .").find("Read failed"), std::string::npos);
    EXPECT_EQ(get_int("a"), 1);
}

} // namespace
} // namespace quelor
