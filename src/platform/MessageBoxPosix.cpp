#include "platform/MessageBox.h"

#ifdef Z3D_REFUSABLE

#include <cstddef>
#include <cstring>

namespace z3d::platform {
namespace {

RecordedMessageBox latest;

template <std::size_t kSize>
void Record(char (&field)[kSize], const char* text) {
    std::strncpy(field, text, kSize - 1);
    field[kSize - 1] = '\0';
}

} // namespace

void ShowMessageBox(const char* text, const char* caption, std::uint32_t style) {
    ++latest.shown;
    Record(latest.text, text);
    Record(latest.caption, caption);
    latest.style = style;
}

const RecordedMessageBox& LatestMessageBox() { return latest; }

} // namespace z3d::platform

#else

namespace z3d::platform {

// A library that does not know what its host is must not open a display, and a terminal may be nobody's: the call that
// fails says so by its result.
void ShowMessageBox(const char*, const char*, std::uint32_t) {}

} // namespace z3d::platform

#endif
