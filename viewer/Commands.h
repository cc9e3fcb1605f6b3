// What menu, buttons and keys can ask for.
#pragma once

#include <optional>
#include <span>

#include "State.h"

namespace z3d::viewer {

// Numbers are those of menu entries and buttons.
enum class Command : unsigned short {
    Open = 100,
    ShowPhantom,
    SavePicture,
    SaveValues,
    Exit,
    CopyPicture,
    CopyCommand,
    LookFrom, // the first of the sides
    Spin = LookFrom + kSideCount,
    Reset,
    Larger,
    Smaller,
    Fit,
    NextPalette,
    TurnLeft,
    TurnRight,
    TurnUp,
    TurnDown,
    Mode,                        // the first of the modes
    Palette = Mode + kModeCount, // the first of the palettes
    ShowKeys = Palette + 3,
    About,
    CancelLoad,
};

constexpr Command Nth(Command first, size_t index) {
    return static_cast<Command>(static_cast<size_t>(first) + index);
}

// What the command does to the state. Commands that need more than that leave it alone and give false.
bool Perform(State& state, Command command, double fittingZoom);

struct Key {
    unsigned code; // a virtual key
    bool control, shift;
};

// Where the keyboard's input goes.
enum class Focus { Picture, Typing, Elsewhere };

// Letters and digits work wherever nothing is typed; arrows only on the picture, other controls have uses for them.
std::optional<Command> CommandOf(const Key& key, Focus focus);

} // namespace z3d::viewer
