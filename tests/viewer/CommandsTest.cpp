#include "Commands.h"

#include <windows.h>

#include <gtest/gtest.h>

namespace z3d::viewer {

namespace {

std::optional<Command> Plain(unsigned code, Focus focus) { return CommandOf({code, false, false}, focus); }

State Loaded() {
    State state;
    ShowVolume(state, {}, {64, 64, 64}, tools::VoxelType::Grey8);
    return state;
}

} // namespace

TEST(Keys, LettersAndDigitsAreForThoseWhoType) {
    EXPECT_EQ(Plain('F', Focus::Picture), Nth(Command::LookFrom, 0));
    EXPECT_EQ(Plain('F', Focus::Elsewhere), Nth(Command::LookFrom, 0));
    EXPECT_EQ(Plain('F', Focus::Typing), std::nullopt);
    EXPECT_EQ(Plain('8', Focus::Picture), Nth(Command::Mode, 7));
    EXPECT_EQ(Plain('8', Focus::Typing), std::nullopt);
}

TEST(Keys, ArrowsTurnThePictureAndMoveSliders) {
    EXPECT_EQ(Plain(VK_LEFT, Focus::Picture), Command::TurnLeft);
    EXPECT_EQ(Plain(VK_LEFT, Focus::Elsewhere), std::nullopt);
}

TEST(Keys, CopyingBelongsToTheTextThatHasTheFocus) {
    const Key copy = {'C', true, false};
    EXPECT_EQ(CommandOf(copy, Focus::Picture), Command::CopyPicture);
    EXPECT_EQ(CommandOf(copy, Focus::Typing), std::nullopt);
    EXPECT_EQ(CommandOf({'C', true, true}, Focus::Typing), Command::CopyCommand);
}

TEST(Keys, SavingIsNotSpinning) {
    EXPECT_EQ(CommandOf({'S', true, false}, Focus::Picture), Command::SavePicture);
    EXPECT_EQ(Plain('S', Focus::Picture), Command::Spin);
}

TEST(Commands, ChangeTheState) {
    State state = Loaded();
    EXPECT_TRUE(Perform(state, Nth(Command::Mode, 4), 1));
    EXPECT_STREQ(state.view.Mode().name, "layers");
    EXPECT_TRUE(Perform(state, Nth(Command::LookFrom, 3), 1));
    EXPECT_EQ(state.view.angles, (Angles{-90, 0, -90}));
    EXPECT_TRUE(Perform(state, Command::Spin, 1));
    EXPECT_TRUE(state.spinning);
    EXPECT_TRUE(Perform(state, Command::Larger, 2));
    EXPECT_DOUBLE_EQ(state.zoom, 2.2);
}

TEST(Commands, PalettesGoRound) {
    State state = Loaded();
    for (const tools::Palette expected :
         {tools::Palette::Fire, tools::Palette::Viridis, tools::Palette::Grey}) {
        Perform(state, Command::NextPalette, 1);
        EXPECT_EQ(state.view.palette, expected);
    }
}

TEST(Commands, ArrowsThereAndBackLeadToTheSameView) {
    State state = Loaded();
    const tools::Rotation before = state.view.rotation;
    for (const Command command : {Command::TurnLeft, Command::TurnUp, Command::TurnDown, Command::TurnRight})
        Perform(state, command, 1);
    for (size_t i = 0; i < 9; ++i)
        EXPECT_NEAR(state.view.rotation[i], before[i], 1e-12);
}

TEST(Commands, WhatNeedsTheWindowIsLeftToIt) {
    State state = Loaded();
    for (const Command command :
         {Command::Open, Command::SavePicture, Command::Exit, Command::CopyCommand, Command{}})
        EXPECT_FALSE(Perform(state, command, 1));
}

} // namespace z3d::viewer
