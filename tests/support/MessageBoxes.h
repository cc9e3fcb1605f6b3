// Sees what a modal message box says, and dismisses it.
#pragma once

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>

namespace z3d::test {

// All empty when no box was shown.
struct ShownBox {
    std::string caption;
    std::string text;
    std::uint32_t style = 0; // one OK button and the exclamation icon: 0x30; anything else that is seen: 1

    bool operator==(const ShownBox&) const = default;
};

void PrintTo(const ShownBox& box, std::ostream* out);

// Runs `action` on this thread. The first box that it shows here is read and then dismissed.
ShownBox BoxShownBy(const std::function<void()>& action);

} // namespace z3d::test
