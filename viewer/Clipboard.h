#pragma once

#include <windows.h>

#include <string>

#include "Picture.h"

namespace z3d::viewer {

// False when another program holds the clipboard, or memory is short.
bool CopyText(HWND owner, const std::string& text);
bool CopyPicture(HWND owner, const tools::Picture& picture);

} // namespace z3d::viewer
