// What the library tells the user in a modal box.
#pragma once

namespace z3d::frame {

// Hosts and their users know these texts, spelling included.
inline constexpr const char* kCannotOpenFile = "Cannot open file";
inline constexpr const char* kOutOfMemory = "Out of memmory";

// Shows a box with the text under the message title; returns when it has been dismissed. While it is open,
// code of the host runs on this thread.
void ShowWarning(const char* text);

} // namespace z3d::frame
