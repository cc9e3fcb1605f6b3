// The menu: every command with its key.
#pragma once

#include <windows.h>

#include "State.h"

namespace z3d::viewer {

// The caller owns it until it is given to a window.
HMENU MakeMenu();

// Marks the mode, the palette and the spin of the state.
void ShowInMenu(HMENU menu, const State& state);

} // namespace z3d::viewer
