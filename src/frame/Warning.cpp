#include "frame/Warning.h"

#include "frame/MessageTitle.h"
#include "platform/MessageBox.h"

namespace z3d::frame {

void ShowWarning(const char* text) {
    platform::ShowMessageBox(text, MessageTitle(), platform::kWarningStyle);
}

} // namespace z3d::frame
