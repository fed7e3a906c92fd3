// Units: what the bytes of each form are, what an open does to an existing file, and how failures
// are reported. The screen is captured, the files live in a folder of their own.
#include "kernel/fortfile.hpp"

#include "../support/files.hpp"
#include "../support/session.hpp"
#include "kernel/project.hpp"

#include <cstring>
#include <numeric>

namespace quelor {
namespace {

namespace fs = std::filesystem;

struct Fortfile : Session {
    Fortfile() { set_project_name("hull"); }
};

TEST_F(Fortfile, ReportsGoToTheScreenAndTheOutputFileAlike) {
    ASSERT_EQ(fortopen_ext(unit_output, ".out", "UNKNOWN", "FORMATTED"), 0);
    const std::string shown = screen([] {
        write_both("10('  ROW/COL', i5, $)", {1});
        write_both("30(i6, $)", {2});
        write_both("()");
        write_both("(i3)", {1.5}); // an item of the wrong type is a message, not a crash
    });
    EXPECT_EQ(shown, "  ROW/COL    1     2\n\n  Error in format (i3): item 1 is a real number, "
                     "the edit descriptor takes an integer\n");
    close_unit(unit_output);
    EXPECT_EQ(file_bytes("hull.out"), shown);
}

TEST_F(Fortfile, StatusDecidesWhatHappensToAnExistingFile) {
    std::ofstream("hull.a") << "first\nsecond\nthird\n";
    const auto write_x = [](const char* status, const char* position) {
        EXPECT_EQ(fortopen_ext_position(99, ".a", status, "formatted", position), 0);
        write_text(99, "x\n");
        close_unit(99);
        return file_bytes("hull.a");
    };
    EXPECT_EQ(write_x("old", "append"), "first\nsecond\nthird\nx\n");
    EXPECT_EQ(write_x("UNKNOWN", "REWIND"), "x\n"); // nothing of the longer file is left behind
    ASSERT_EQ(fortopen_ext(99, ".a", "REPLACE", "FORMATTED"), 0);
    close_unit(99);
    EXPECT_EQ(file_bytes("hull.a"), "");
    ASSERT_EQ(fortopen_name(99, "new", "NEW", "FORMATTED"), 0);
    close_and_delete_unit(99);
    EXPECT_FALSE(fs::exists("new"));
}

TEST_F(Fortfile, FailedOpensAreReportedOnBothUnitsWithTheirStatus) {
    std::ofstream("hull.old") << "kept";
    fs::create_directory("hull.dir");
    ASSERT_EQ(fortopen_ext(unit_output, ".out", "UNKNOWN", "FORMATTED"), 0);
    int missing = 0, existing = 0, directory = 0, nowhere = 0;
    const std::string shown = screen([&] {
        missing = fortopen_ext(99, ".no", "OLD", "UNFORMATTED");
        existing = fortopen_ext(99, ".old", "NEW", "FORMATTED");
        directory = fortopen_ext(99, ".dir", "UNKNOWN", "binary");
        nowhere = fortopen_name(99, "no/such/folder", "UNKNOWN", "BINARY");
    });
    EXPECT_EQ(missing, ENOENT);
    EXPECT_EQ(existing, EEXIST);
    EXPECT_EQ(directory, EISDIR);
    EXPECT_EQ(nowhere, ENOENT);
    EXPECT_TRUE(shown.starts_with("\n  Error opening file hull.no, iostat =   2\n\n"));
    close_unit(unit_output);
    EXPECT_EQ(file_bytes("hull.out"), shown);
    EXPECT_EQ(file_bytes("hull.old"), "kept");
    write_text(99, "lost"); // a unit that is not open swallows what is written
    std::vector<char> record;
    EXPECT_FALSE(read_record_bytes(99, record));

    const std::string long_extension = "." + std::string(200, 'e');
    ASSERT_EQ(fortopen_ext(99, long_extension, "NEW", "FORMATTED"), 0);
    EXPECT_TRUE(fs::exists(("hull" + long_extension).substr(0, 132)));
}

TEST_F(Fortfile, AnUnknownFormIsFatal) {
    EXPECT_EXIT(
        {
            detach();
            fortopen_ext(99, ".x", "NEW", "odd");
        },
        testing::ExitedWithCode(0),
        "Error opening file hull.xin routine fortopen_ext. File type odd not supported"
        "(.|\n)*Program must shutdown");
    EXPECT_FALSE(fs::exists("hull.x"));
}

TEST_F(Fortfile, AFullDiskIsReportedOnceAndTheProgramGoesOn) {
    if (!fs::exists("/dev/full")) GTEST_SKIP() << "no /dev/full";
    const std::string shown = screen([] {
        ASSERT_EQ(fortopen_name(99, "/dev/full", "OLD", "FORMATTED"), 0);
        for (int i = 0; i < 10000; ++i)
            write_unit(99, "(i8)", {i});
        close_unit(99);
        ASSERT_EQ(fortopen_name(98, "/dev/full", "OLD", "UNFORMATTED"), 0);
        RecordWriter(98).put(1);
        close_unit(98);
    });
    const std::string once = "\n  Error writing file /dev/full: No space left on device\n\n";
    EXPECT_EQ(shown, once + once);
    EXPECT_TRUE(unit_has_failed(99));
    ASSERT_EQ(fortopen_ext(99, ".a", "NEW", "FORMATTED"), 0);
    EXPECT_FALSE(unit_has_failed(99));
}

TEST_F(Fortfile, RecordsCarryTheirLengthOnBothSides) {
    ASSERT_EQ(fortopen_ext(99, ".rec", "NEW", "UNFORMATTED"), 0);
    RecordWriter(99).put(std::int32_t{0x41424344}).put('E');
    std::vector<double> values(20000);
    std::iota(values.begin(), values.end(), 0.0);
    RecordWriter(99).put(7).put(std::span(values)).put(8); // longer than the buffer
    { RecordWriter empty(99); }
    ASSERT_TRUE(backspace_record(99)); // before the empty one
    ASSERT_TRUE(backspace_record(99)); // before the long one
    std::vector<char> record;
    ASSERT_TRUE(read_record_bytes(99, record));
    ASSERT_EQ(record.size(), 160008u);
    EXPECT_EQ(std::memcmp(record.data() + 4, values.data(), 160000), 0);
    EXPECT_EQ(record[160004], 8);
    ASSERT_TRUE(backspace_record(99));
    RecordWriter(99).put('z'); // is now the last one
    rewind_unit(99);
    EXPECT_FALSE(backspace_record(99));
    ASSERT_TRUE(read_record_bytes(99, record));
    EXPECT_EQ(std::string(record.begin(), record.end()), "DCBAE");
    ASSERT_TRUE(read_record_bytes(99, record));
    EXPECT_EQ(record, std::vector<char>{'z'});
    EXPECT_FALSE(read_record_bytes(99, record));
    close_unit(99);
    EXPECT_EQ(file_bytes("hull.rec"), std::string("\5\0\0\0DCBAE\5\0\0\0\1\0\0\0z\1\0\0\0", 22));
}

TEST_F(Fortfile, DamagedRecordFilesEndTheReading) {
    using namespace std::string_literals;
    for (const std::string& bytes :
         {"\5\0\0\0abc"s, "\377\377\377\377abcdefgh"s, "\1\0\0\0a\2\0\0\0"s, "\1\0"s, ""s}) {
        std::ofstream("hull.bad", std::ios::binary) << bytes;
        ASSERT_EQ(fortopen_ext(99, ".bad", "OLD", "UNFORMATTED"), 0);
        std::vector<char> record;
        EXPECT_FALSE(read_record_bytes(99, record));
        EXPECT_FALSE(backspace_record(99) && backspace_record(99));
    }
}

TEST_F(Fortfile, StreamsReadBackWhatWasWritten) {
    std::vector<double> values{1, 2, 3}, back(3);
    ASSERT_EQ(fortopen_ext(99, ".str", "NEW", "BINARY"), 0);
    stream_write(99, std::span(values));
    rewind_unit(99);
    EXPECT_TRUE(stream_read(99, std::span(back)));
    EXPECT_EQ(back, values);
    EXPECT_FALSE(stream_read(99, std::span(back).first(1)));
}

} // namespace
} // namespace quelor
