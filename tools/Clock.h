#pragma once

namespace z3d::tools {

// Seconds since some moment of the past.
double SecondsNow();

} // namespace z3d::tools
