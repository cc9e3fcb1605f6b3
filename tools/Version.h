#pragma once

#include <string>

namespace z3d::tools {

// The tool's version and that of the library it found.
std::string VersionText();

} // namespace z3d::tools
