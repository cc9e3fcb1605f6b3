#include "exports/ImageCall.h"

#include "exports/ForeignHost.h"
#include "exports/Library.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>

namespace z3d::test {

FloatingPointEnvironment CurrentEnvironment() {
    std::uint32_t x87[7];
    std::uint32_t mxcsr;
    // Storing masks all exceptions; loading again undoes that.
    asm volatile("fnstenv %0\n\tfldenv %0\n\tstmxcsr %1" : "=m"(x87), "=m"(mxcsr) : : "memory");
    return {static_cast<std::uint16_t>(x87[0]), static_cast<std::uint16_t>(x87[1]),
            static_cast<std::uint16_t>(x87[2]), mxcsr};
}

int Z3D_CALL LogCallback(std::size_t user, int code, unsigned int value) {
    const FloatingPointEnvironment found = CurrentEnvironment();
    auto& log = *std::bit_cast<CallbackLog*>(user);
    log.environments.push_back(found);
    log.calls.push_back({code, value});
    if (log.atEachCall != nullptr) log.atEachCall(log);
    return static_cast<int>(log.calls.size()) - 1 == log.cancelAt ? log.cancelResult : 0;
}

std::vector<Slot> ImageCall::Slots() {
    const void* user = log;
    const auto* callback = log != nullptr ? reinterpret_cast<const void*>(&LogCallback) : nullptr;
    return SlotsOf(red, green, blue, width, height, depth, 0xDEADBEEF, 0xFFFFFFFF, 0x80000001, is8bit,
                   maxDiagonal, &outMax, &outMin, &rangeMax, &rangeMin, user, callback, keepChannelsApart);
}

Volume3D* ImageCall::Run() {
    return std::bit_cast<Volume3D*>(ForeignHost(kPlainHost).CallWithSlots("GetRGBImage", Slots()));
}

Volume3D* ImageCall::RunUnwatched() {
    return std::bit_cast<Volume3D*>(CallForeign(AddressOf("GetRGBImage"), Slots(), 0, {}).result);
}

std::vector<unsigned char> BytesOf(Volume3D* volume) {
    std::vector<unsigned char> bytes;
    unsigned char*** slices = TheLibrary().GlobalLock3D(volume);
    for (std::size_t z = 0; z < volume->depth; ++z) {
        const std::size_t count =
            std::size_t{volume->width} * volume->height * volume->slices[z]->bytesPerPixel;
        bytes.insert(bytes.end(), slices[z][0], slices[z][0] + count);
    }
    TheLibrary().GlobalUnlock3D(volume);
    return bytes;
}

Image TakeImage(Volume3D* volume) {
    if (volume == nullptr) return {};
    EXPECT_EQ(volume->sliceRows, nullptr);
    Image image = {volume->width, volume->height, volume->depth, volume->slices[0]->bytesPerPixel,
                   BytesOf(volume)};
    TheLibrary().Free3DData(volume);
    return image;
}

} // namespace z3d::test
