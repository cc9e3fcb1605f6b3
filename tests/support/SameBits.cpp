#include "support/SameBits.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iomanip>

namespace z3d::test {

::testing::AssertionResult SameBits(const reference::Projection& expected,
                                    const reference::Projection& actual) {
    if (expected.rendered != actual.rendered || (expected.width & 0xFFFF) != actual.width
        || (expected.height & 0xFFFF) != actual.height || expected.pixels.size() != actual.pixels.size()) {
        return ::testing::AssertionFailure()
               << "expected " << expected.width << " x " << expected.height
               << (expected.rendered ? "" : " not rendered") << ", got " << actual.width << " x "
               << actual.height << (actual.rendered ? "" : " not rendered");
    }
    if (expected.pixels.empty()
        || std::memcmp(expected.pixels.data(), actual.pixels.data(), expected.pixels.size() * sizeof(float))
               == 0) {
        return ::testing::AssertionSuccess();
    }

    ::testing::AssertionResult failure = ::testing::AssertionFailure();
    int differing = 0;
    for (std::size_t index = 0; index < expected.pixels.size(); ++index) {
        const auto expectedBits = std::bit_cast<std::uint32_t>(expected.pixels[index]);
        const auto actualBits = std::bit_cast<std::uint32_t>(actual.pixels[index]);
        if (expectedBits == actualBits) continue;
        if (differing++ > 0) continue;
        const std::size_t pixel = index / 3;
        const auto width = static_cast<std::size_t>(expected.width);
        failure << "column " << pixel % width << ", array row " << pixel / width << ", float " << index % 3
                << std::hex << std::setfill('0') << ": expected " << std::setw(8) << expectedBits << ", got "
                << std::setw(8) << actualBits << std::dec << " (" << expected.pixels[index] << ", "
                << actual.pixels[index] << ")";
    }
    return failure << "; " << differing << " of " << expected.pixels.size() << " floats differ";
}

} // namespace z3d::test
