#include "kernel/database.hpp"

#include "../support/files.hpp"
#include "../support/session.hpp"
#include "kernel/project.hpp"
#include "kernel/utilities.hpp"

#include <csignal>
#include <cstring>
#include <filesystem>
#include <sys/resource.h>
#include <sys/stat.h>

namespace quelor {
namespace {

struct Database : Session {
    Database() : Session({database_rows()}) { set_project_name("project"); }
};

void fill_store() {
    create_matrix<double>(".xyz", 3, 2)(3, 2) = -1.5;
    create_array3<Complex8>("z", 1, 2, 3)(1, 2, 3) = {1, 2};
    create_matrix<Complex4>("$w", 2, 0)(2, 1) = {3, 4};
    create_string_array("text", "s");
    create_int_scalar("\xe9 t", 42);
    const std::int32_t one[] = {1};
    std::memcpy(db_create(type_unnamed, "seven", one), "abcd", 4);
}

/// Every array with its type, dims and bytes.
std::string snapshot() {
    std::string all;
    for (NamedArray entry = db_next({}); !entry.name.empty(); entry = db_next(entry.name)) {
        const auto& [data, dims, type] = entry.array;
        all += std::string(entry.name) + '\n' + int_bytes({type, entry.array.ndim()});
        for (const std::int32_t dim : dims)
            all += int_bytes({dim});
        all.append(static_cast<const char*>(data), array_byte_size(type, dims));
    }
    return all;
}

TEST_F(Database, FileHoldsTheEntriesOfTheStoreAndATerminator) {
    EXPECT_TRUE(db_save("empty"));
    EXPECT_EQ(file_bytes("empty.db"), int_bytes({0}));
    create_int_scalar("ab", 7);
    EXPECT_TRUE(db_save("one"));
    EXPECT_EQ(file_bytes("one.db"),
              int_bytes({2}) + "ab" + int_bytes({4, 2, 1, 1, 7}) + int_bytes({0}));
}

TEST_F(Database, ComesBackAsItWasAndIsAddedToWhatIsThere) {
    fill_store();
    const std::string before = snapshot();
    EXPECT_TRUE(db_save("a"));
    EXPECT_EQ(snapshot(), before);
    db_clear();
    EXPECT_TRUE(db_read("a"));
    EXPECT_EQ(snapshot(), before);
    db_clear();
    create_int_scalar("kept", 1);
    create_int_scalar("z", 1);
    EXPECT_TRUE(db_read("a"));
    EXPECT_TRUE(find_array("kept"));
    EXPECT_EQ(find_array("z").ndim(), 3);
}

TEST_F(Database, ADamagedFileIsAFailedRead) {
    fill_store();
    db_save("a");
    const std::string whole = file_bytes("a.db");
    for (std::size_t n = 0; n < whole.size(); ++n) {
        put_file("cut.db", whole.substr(0, n));
        EXPECT_FALSE(db_read("cut")) << n;
    }
    for (std::size_t i = 0; i < whole.size(); ++i)
        for (const char c : {'\xff', '\x7f', '\0', '\x80'}) { // no crash whatever is wrong
            std::string bytes = whole;
            bytes[i] = c;
            put_file("bad.db", bytes);
            db_read("bad");
            for (NamedArray entry = db_next({}); !entry.name.empty(); entry = db_next(entry.name))
                ASSERT_GE(entry.array.ndim(), 1);
        }
    constexpr std::int32_t most = 2147483647;
    const auto entry = [](std::initializer_list<std::int32_t> head) {
        return int_bytes({1}) + "q" + int_bytes(head) + std::string(64, '\0');
    };
    db_clear();
    for (const std::string& bytes :
         {int_bytes({-1}), int_bytes({most}), entry({8, -1}), entry({8, 0}), entry({8, most}),
          entry({8, 1, 0}), entry({8, 1, -4}), entry({8, 1, most}), entry({16, 2, most, most}),
          entry({8, 4, 65536, 65536, 65536, 65536}), entry({100, 1, 1}), entry({2, 1, 1}),
          int_bytes({2}) + std::string("a\0", 2) + entry({8, 1, 1}).substr(5)}) {
        put_file("bad.db", bytes);
        EXPECT_FALSE(db_read("bad"));
        EXPECT_FALSE(find_array("q"));
    }
    EXPECT_FALSE(db_read("absent"));
    std::filesystem::create_directory("folder.db");
    EXPECT_FALSE(db_read("folder"));
}

TEST_F(Database, AFullDiskLeavesTheEarlierFile) {
    create_int_scalar("old", 1);
    EXPECT_TRUE(db_save("a"));
    const std::string before = file_bytes("a.db");
    create_matrix<double>("large", 10000, 1);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit small{1000, limit.rlim_max}; // no file beyond 1000 bytes
    setrlimit(RLIMIT_FSIZE, &small);
    const bool saved = db_save("a");
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(saved);
    EXPECT_EQ(file_bytes("a.db"), before);
    EXPECT_FALSE(db_save("no/such/folder"));
    EXPECT_EQ(run("save no/such/folder"), "     \n      Error saving database file\n");
}

TEST_F(Database, ASavePutsAFileOnlyInThePlaceOfAFileThatMayBeWritten) {
    namespace fs = std::filesystem;
    create_int_scalar("a", 1);
    const std::string failed = "     \n      Error saving database file\n";
    put_file("protected.db", "kept");
    fs::permissions("protected.db", fs::perms::owner_read);
    EXPECT_EQ(run("save protected"), failed);
    EXPECT_EQ(file_bytes("protected.db"), "kept");
    fs::create_directory("folder.db");
    ASSERT_EQ(mkfifo("pipe.db", 0600), 0);
    for (const std::string name : {"folder", "pipe"})
        EXPECT_EQ(run("save " + name), failed + "     \n      " + name +
                                           ".db is a folder or a pipe; save under another name\n");
    EXPECT_TRUE(fs::is_directory("folder.db") && fs::is_fifo("pipe.db"));

    fs::create_directory("far");
    put_file("far/there.db", "old");
    fs::permissions("far/there.db", fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("far/there.db", "near.db");
    fs::create_symlink("far/new.db", "nowhere.db");
    for (const std::string name : {"near", "nowhere"}) {
        EXPECT_TRUE(db_save(name));
        EXPECT_TRUE(fs::is_symlink(name + ".db"));
        EXPECT_TRUE(db_read(name));
    }
    EXPECT_EQ(fs::status("far/there.db").permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
    const auto left = std::distance(fs::directory_iterator("far"), fs::directory_iterator());
    EXPECT_EQ(left, 2) << "nothing unfinished is left beside the two";
}

TEST_F(Database, SaveAndReadTakeTheProjectsNameWithoutAnArgument) {
    create_int_scalar("a", 1);
    EXPECT_EQ(run("save"), "\n    Database saved in file project.db\n\n");
    EXPECT_EQ(run("clear"), "");
    EXPECT_EQ(run("readdb"), "\n    Database read from file project.db\n\n");
    EXPECT_TRUE(find_array("a"));
}

TEST_F(Database, IsListed) {
    EXPECT_EQ(run("ll"), "  Database is empty\n\n");
    EXPECT_EQ(run("memory"), "   0 bytes used or    0.0 KB\n\n");
    create_matrix<double>("mat", 3, 4);
    create_array3<Complex8>(".cube", 1, 2, 3);
    create_int_scalar("$n", 1);
    EXPECT_EQ(run("ll"), "     integer(4)     $n(1,1)\n"
                         "     complex(8)     .cube(1,2,3)\n"
                         "     real(8)        mat(3,4)\n"
                         "\n    3 objects with data memory of     0.2 KB\n\n");
    EXPECT_EQ(run("ll mat $n none mat"), "     real(8)        mat(3,4)\n"
                                         "     integer(4)     $n(1,1)\n\n");
    EXPECT_EQ(run("ll none"), " Not found\n\n");
    EXPECT_EQ(run("ls"), "$n(1,1)             .cube(1,2,3)        mat(3,4)\n"
                         "    3 objects with data memory of     0.2 KB\n\n");
    EXPECT_EQ(run("dir c=0"), run("ls c=4"));
    EXPECT_EQ(run("ls c=2 mat mat mat"),
              "mat(3,4)                                mat(3,4)\nmat(3,4)\n\n");
    EXPECT_EQ(run("ls c=10 mat .cube mat"), "mat(3,4)        .cube(1,2,3)    mat(3,4)\n\n")
        << "a long entry takes the next columns";
    EXPECT_EQ(run("ls c=999 mat"), "mat(3,4)\n\n");
    create_matrix<double>("large", 1 << 17, 1);
    EXPECT_EQ(run("memory"), "   1048772 bytes used or    1.0 MB\n\n");
}

TEST_F(Database, ArraysAreRemovedAndMoved) {
    for (const char* name : {"mat1", "mat2", "a", "b", "c"})
        create_int_scalar(name, 1);
    const std::string star = "     \n      Last character of argument must be *\n";
    for (const char* line : {"rm* mat", "rm* m*t*", "del*"})
        EXPECT_EQ(run(line), star);
    EXPECT_EQ(run("del* mat*"), "");
    EXPECT_EQ(run("rm a none b"), "");
    EXPECT_EQ(run("mv c"), "     \n      Move where?\n");
    EXPECT_EQ(run("rename c d"), "");
    EXPECT_EQ(run("mv c e"), "     Move failed - old name probably doesn't exist\n");
    EXPECT_EQ(run("ls"), "d(1,1)\n    1 objects with data memory of     0.0 KB\n\n");
    run("rm* *");
    EXPECT_EQ(run("dir"), "  Database is empty\n\n");
}

} // namespace
} // namespace quelor
