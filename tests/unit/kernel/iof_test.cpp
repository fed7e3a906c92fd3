// Input files: line ends, the end of a file, rewinding, the loop file, the nested command line.

#include "../support/session.hpp"
#include "kernel/main_loop.hpp"
#include "kernel/project.hpp"
#include "kernel/utilities.hpp"

namespace quelor {

namespace {

class InputFiles : public Session {
protected:
    InputFiles() { set_project_name("project"); }

    static std::string next() { return read_input_line("", true).text; }
};

} // namespace

TEST_F(InputFiles, AFileThatEndsGivesReturnForEver) {
    give_input("one\n\n  two\r\nthree");
    EXPECT_EQ(next(), "one");
    EXPECT_EQ(next(), "");
    EXPECT_EQ(next(), "  two");
    EXPECT_EQ(next(), "three");
    EXPECT_FALSE(input_has_ended());
    EXPECT_EQ(next(), "return");
    EXPECT_TRUE(input_has_ended());
    EXPECT_EQ(next(), "return");
}

TEST_F(InputFiles, ALastLineOfOneCharacterIsLostUnlessItHasALineEnd) {
    give_input("ab\nx");
    EXPECT_EQ(next(), "ab");
    EXPECT_EQ(next(), "return");
    pop_input();
    give_input("x\n");
    EXPECT_EQ(next(), "x");
    EXPECT_EQ(next(), "return");
}

TEST_F(InputFiles, ALineEndsAtANulAndIsCutWhereNoRecordCanHoldIt) {
    give_input(std::string("ab\0cd\n", 6) + std::string(200000, 'x') + "\nlast\n");
    EXPECT_EQ(next(), "ab");
    EXPECT_EQ(next(), std::string(2053, 'x'));
    EXPECT_EQ(next(), "last");
}

TEST_F(InputFiles, WhatCannotBeReadIsNotPushed) {
    EXPECT_EQ(open_input_file("absent", false), 0);
    EXPECT_EQ(open_input_file(".", false), 0);
    EXPECT_TRUE(input_is_console());
}

TEST_F(InputFiles, TheStackHoldsThirtyFilesAndGoesBackToTheLastOneOpened) {
    give_input("first\nsecond\n");
    EXPECT_EQ(next(), "first");
    for (int depth = 2; depth <= input_levels; ++depth)
        ASSERT_EQ(open_input_file("records", true), depth);
    EXPECT_EQ(open_input_file("records", true), 0);
    EXPECT_EQ(next(), "first");
    EXPECT_TRUE(input_echo());
    close_inputs_from(1);
    EXPECT_FALSE(input_echo());
    EXPECT_EQ(next(), "second");
}

TEST_F(InputFiles, ALoopIsReadAgainAndAgainAndLeavesTheLogAsItWas) {
    for (int i = 1; i <= 20000; ++i) {
        if (i == 1) begin_loop_text();
        add_loop_record("record " + std::to_string(i));
    }
    set_log_on(true);
    ASSERT_TRUE(replay_loop());
    EXPECT_FALSE(log_on());
    for (int pass = 1; pass <= 2; ++pass) {
        for (int i = 1; i <= 20000; ++i)
            ASSERT_EQ(next(), "record " + std::to_string(i));
        ASSERT_EQ(next(), "return");
        ASSERT_TRUE(rewind_input());
    }
    discard_loop();
    EXPECT_TRUE(log_on());
    EXPECT_TRUE(input_is_console());
}

TEST_F(InputFiles, APlaceIsFoundAgainWhetherOrNotTheBufferStillHoldsIt) {
    std::string text;
    for (int i = 1; i <= 20000; ++i)
        text += "record " + std::to_string(i) + "\n";
    give_input(text);
    for (const int further : {10, 15000}) {
        const std::int64_t place = input_place();
        const std::string first = next();
        for (int i = 1; i <= further; ++i)
            next();
        ASSERT_TRUE(return_to_place(place));
        EXPECT_EQ(next(), first);
    }
    EXPECT_EQ(next(), "record 3");
}

TEST_F(InputFiles, TheNestedCommandLineEndsAtExitAndOffersNoFiniteElementCommands) {
    give_input("seti a v=4\nnodes\nexit\nseti a v=5\n"); // `nodes` would read "exit" as a record
    nested_command_line();
    EXPECT_EQ(get_int("a"), 4);
    EXPECT_EQ(next(), "seti a v=5");
}

} // namespace quelor
