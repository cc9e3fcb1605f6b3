// The command line that makes the same picture: from trying things out to a script.
#pragma once

#include <string>

#include "Frame.h"

namespace z3d::viewer {

// For the shown view, with every choice that is not the default. The made-up head takes a line of its own.
std::string CommandText(const View& view, const Source& source);

} // namespace z3d::viewer
