// Modal message boxes.
#pragma once

#include <cstdint>

namespace z3d::platform {

// One OK button and the exclamation icon, in the platform's style value.
inline constexpr std::uint32_t kWarningStyle = 0x30;

// Shows a box in front of the calling thread's active window and returns when the user has dismissed it. Where there
// is no service for boxes, as on Linux, nothing is shown, written or waited for, as if the user had dismissed it at
// once. Neither string is null.
void ShowMessageBox(const char* text, const char* caption, std::uint32_t style);

#if !defined(_WIN32) && defined(Z3D_REFUSABLE)
// For tests a box is recorded instead, cut to the length of these fields.
struct RecordedMessageBox {
    int shown; // boxes since the program's start; the other fields are the latest one's
    char text[64];
    char caption[64];
    std::uint32_t style;
};
const RecordedMessageBox& LatestMessageBox();
#endif

} // namespace z3d::platform
