#include "Commands.h"

#include <windows.h>

namespace z3d::viewer {

namespace {

constexpr double kNudgeDegrees = 5;

bool Within(Command command, Command first, size_t count, size_t& index) {
    const auto number = static_cast<size_t>(command);
    const auto start = static_cast<size_t>(first);
    if (number < start || number >= start + count) return false;
    index = number - start;
    return true;
}

constexpr size_t kPaletteCount = tools::kPaletteNames.size();

void SetPalette(State& state, size_t index) {
    state.view.palette = static_cast<tools::Palette>(index % kPaletteCount);
}

bool PerformNudge(State& state, Command command) {
    switch (command) {
    case Command::TurnLeft:
        Nudge(state, -kNudgeDegrees, 0);
        return true;
    case Command::TurnRight:
        Nudge(state, kNudgeDegrees, 0);
        return true;
    case Command::TurnUp:
        Nudge(state, 0, kNudgeDegrees);
        return true;
    case Command::TurnDown:
        Nudge(state, 0, -kNudgeDegrees);
        return true;
    default:
        return false;
    }
}

// Where they hold: typing wants the letters and what it does with Ctrl for itself.
enum class Reach { Everywhere, NotTyping, PictureOnly };

struct Binding {
    unsigned code;
    bool control, shift;
    Reach reach;
    Command command;
};

constexpr Binding kBindings[] = {
    {'O', true, false, Reach::Everywhere, Command::Open},
    {'S', true, false, Reach::Everywhere, Command::SavePicture},
    {'S', true, true, Reach::Everywhere, Command::SaveValues},
    {'C', true, false, Reach::NotTyping, Command::CopyPicture},
    {'C', true, true, Reach::Everywhere, Command::CopyCommand},
    {'F', false, false, Reach::NotTyping, Nth(Command::LookFrom, 0)},
    {'B', false, false, Reach::NotTyping, Nth(Command::LookFrom, 1)},
    {'L', false, false, Reach::NotTyping, Nth(Command::LookFrom, 2)},
    {'R', false, false, Reach::NotTyping, Nth(Command::LookFrom, 3)},
    {'T', false, false, Reach::NotTyping, Nth(Command::LookFrom, 4)},
    {'U', false, false, Reach::NotTyping, Nth(Command::LookFrom, 5)},
    {'S', false, false, Reach::NotTyping, Command::Spin},
    {'0', false, false, Reach::NotTyping, Command::Reset},
    {'Z', false, false, Reach::NotTyping, Command::Fit},
    {'P', false, false, Reach::NotTyping, Command::NextPalette},
    {VK_ADD, false, false, Reach::NotTyping, Command::Larger},
    {VK_OEM_PLUS, false, false, Reach::NotTyping, Command::Larger},
    {VK_OEM_PLUS, false, true, Reach::NotTyping, Command::Larger},
    {VK_SUBTRACT, false, false, Reach::NotTyping, Command::Smaller},
    {VK_OEM_MINUS, false, false, Reach::NotTyping, Command::Smaller},
    {VK_LEFT, false, false, Reach::PictureOnly, Command::TurnLeft},
    {VK_RIGHT, false, false, Reach::PictureOnly, Command::TurnRight},
    {VK_UP, false, false, Reach::PictureOnly, Command::TurnUp},
    {VK_DOWN, false, false, Reach::PictureOnly, Command::TurnDown},
    {VK_F1, false, false, Reach::Everywhere, Command::ShowKeys},
    {VK_ESCAPE, false, false, Reach::Everywhere, Command::CancelLoad},
};

bool Holds(Reach reach, Focus focus) {
    return reach == Reach::Everywhere || (reach == Reach::NotTyping && focus != Focus::Typing)
           || focus == Focus::Picture;
}

} // namespace

bool Perform(State& state, Command command, double fittingZoom) {
    size_t index = 0;
    if (Within(command, Command::LookFrom, kSideCount, index))
        LookFrom(state.view, static_cast<Side>(index));
    else if (Within(command, Command::Mode, kModeCount, index))
        state.view.mode = index;
    else if (Within(command, Command::Palette, kPaletteCount, index))
        SetPalette(state, index);
    else if (command == Command::NextPalette)
        SetPalette(state, static_cast<size_t>(state.view.palette) + 1);
    else if (command == Command::Spin)
        state.spinning = !state.spinning;
    else if (command == Command::Reset)
        ResetAll(state);
    else if (command == Command::Larger)
        ZoomBy(state, 1, fittingZoom);
    else if (command == Command::Smaller)
        ZoomBy(state, -1, fittingZoom);
    else if (command == Command::Fit)
        state.zoom = kFitZoom, state.offset = {};
    else
        return PerformNudge(state, command);
    return true;
}

std::optional<Command> CommandOf(const Key& key, Focus focus) {
    for (size_t mode = 0; mode < kModeCount; ++mode) {
        const bool digit = key.code == '1' + mode || key.code == VK_NUMPAD1 + mode;
        if (digit && !key.control && !key.shift && focus != Focus::Typing) return Nth(Command::Mode, mode);
    }
    for (const Binding& binding : kBindings)
        if (binding.code == key.code && binding.control == key.control && binding.shift == key.shift
            && Holds(binding.reach, focus))
            return binding.command;
    return std::nullopt;
}

} // namespace z3d::viewer
