// The standard streams. Text is UTF-8; a console gets it as UTF-16, so that every letter shows.
#pragma once

#include <string_view>

namespace z3d::tools {

void PrintOut(std::string_view text);
void PrintError(std::string_view text);

// Whether someone watches the error stream: only then progress is drawn.
bool ErrorsGoToConsole();

} // namespace z3d::tools
