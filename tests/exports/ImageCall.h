// GetRGBImage as a host calls it, and a callback that writes down what it is told.
#pragma once

#include "exports/ForeignCall.h"

#include "Zentra3DRendering.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace z3d::test {

struct CallbackCall {
    int code;
    unsigned int value;
    bool operator==(const CallbackCall&) const = default;
};

// There will be no image.
inline constexpr CallbackCall kNoResult = {0, 0x42C80000};

// The host's side of the callback; its address is the user value.
struct CallbackLog {
    std::vector<CallbackCall> calls;
    std::vector<FloatingPointEnvironment> environments; // found at each call
    int cancelAt = -1;
    int cancelResult = 200;
    void (*atEachCall)(CallbackLog& log) = nullptr;
};

// Takes no floating-point instruction, so that any condition of the host is fine.
int Z3D_CALL LogCallback(std::size_t user, int code, unsigned int value);

// What the running thread's units hold.
FloatingPointEnvironment CurrentEnvironment();

// Raw slots: a host may leave anything in the upper halves of the 16-bit ones.
struct ImageCall {
    const char* red = nullptr;
    const char* green = nullptr;
    const char* blue = nullptr;
    std::uint32_t width = 1;
    std::uint32_t height = 1;
    std::uint32_t depth = 1;
    std::uint32_t is8bit = 1;
    std::uint32_t maxDiagonal = 30000;
    std::uint32_t keepChannelsApart = 0;
    CallbackLog* log = nullptr;

    float outMax = 0;
    float outMin = 0;
    float rangeMax = 0;
    float rangeMin = 0;

    // Of all 18 arguments, with all outputs wanted.
    std::vector<Slot> Slots();

    // Calls from a plain host. The volume is the caller's.
    Volume3D* Run();

    // The same without a look at the host's condition afterwards: the system's code behind a message box may raise flags.
    Volume3D* RunUnwatched();
};

// The bytes of all slices, one after another.
std::vector<unsigned char> BytesOf(Volume3D* volume);

// All zero where there is no volume.
struct Image {
    int width = 0, height = 0, depth = 0;
    unsigned int bytesPerPixel = 0;
    std::vector<std::uint8_t> bytes;
};

// Reads and frees a result in one go.
Image TakeImage(Volume3D* volume);

} // namespace z3d::test
