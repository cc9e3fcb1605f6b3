#include "platform/MessageBox.h"

#include <windows.h>

namespace z3d::platform {

void ShowMessageBox(const char* text, const char* caption, std::uint32_t style) {
    static_assert(kWarningStyle == (MB_OK | MB_ICONEXCLAMATION));
    MessageBoxA(GetActiveWindow(), text, caption, style);
}

} // namespace z3d::platform
