#include "platform/MultibyteText.h"

#include <mbstring.h>

namespace z3d::platform {

bool IsSameText(const char* a, const char* b) {
    return _mbscmp(reinterpret_cast<const unsigned char*>(a), reinterpret_cast<const unsigned char*>(b)) == 0;
}

} // namespace z3d::platform
