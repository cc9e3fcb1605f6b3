#include "platform/MessageBox.h"

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
