#include "platform/MultibyteText.h"

#include <cstring>

namespace z3d::platform {

bool IsSameText(const char* a, const char* b) { return std::strcmp(a, b) == 0; }

} // namespace z3d::platform
