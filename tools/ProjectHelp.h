#pragma once

#include <string>

namespace z3d::tools {

// What stands below the options in the help of `zentra project`: modes, conventions and examples.
std::string ProjectHelp();

} // namespace z3d::tools
