// Text in the platform's 8-bit form, where a character may take more than one byte.
#pragma once

namespace z3d::platform {

// Whether two texts are the same, character by character and with regard to case. Neither is null.
bool IsSameText(const char* a, const char* b);

} // namespace z3d::platform
