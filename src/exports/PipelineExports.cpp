#include "Zentra3DRendering.h"

#include "compose/RgbImagePipeline.h"
#include "exports/HostCall.h"
#include "frame/MessageTitle.h"
#include "frame/Warning.h"

#include <cstddef>

using namespace z3d;
using exports::HostCall;
using exports::HostFloatingPoint;
using exports::LibraryFloatingPoint;
using exports::Only16Bits;

namespace {

// The host of one call. Its callback, and whatever of it runs behind a message box, finds the floating-point
// state that the host had.
class CallingHost {
public:
    CallingHost(ProgressCallback callback, std::size_t user, platform::FloatingPointState& floatingPoint)
        : callback_(callback), user_(user), floatingPoint_(floatingPoint) {}

    frame::Host ForLibrary() { return {this, callback_ != nullptr ? Report : nullptr, Warn}; }

private:
    static std::int32_t Report(void* context, std::int32_t code, std::uint32_t value) {
        const auto& self = *static_cast<CallingHost*>(context);
        const HostFloatingPoint guard(self.floatingPoint_);
        return self.callback_(self.user_, code, value);
    }

    static void Warn(void* context, const char* text) {
        const HostFloatingPoint guard(static_cast<CallingHost*>(context)->floatingPoint_);
        frame::ShowWarning(text);
    }

    ProgressCallback callback_;
    std::size_t user_;
    platform::FloatingPointState& floatingPoint_;
};

Volume3D* GetImage(const compose::RgbImageRequest* request, const frame::Host* host) {
    return compose::GetRGBImage(*request, *host);
}

} // namespace

// The result pointers are written through, further down.
// NOLINTBEGIN(readability-non-const-parameter)
Volume3D* Z3D_CALL GetRGBImage(const char* redFile, const char* greenFile, const char* blueFile, short width,
                               short height, short depth, int reserved1, int reserved2, int reserved3,
                               short is8bit, short maxDiagonal, float* outMax, float* outMin,
                               float* rangeMaxOut, float* rangeMinOut, std::size_t user,
                               ProgressCallback callback, int keepChannelsApart) {
    // NOLINTEND(readability-non-const-parameter)
    static_cast<void>(reserved1);
    static_cast<void>(reserved2);
    static_cast<void>(reserved3);
    const compose::RgbImageRequest request = {
        .redFile = redFile,
        .greenFile = greenFile,
        .blueFile = blueFile,
        .width = Only16Bits(width),
        .height = Only16Bits(height),
        .depth = Only16Bits(depth),
        .is8bit = Only16Bits(is8bit) != 0,
        .maxDiagonal = Only16Bits(maxDiagonal),
        .keepChannelsApart = (keepChannelsApart & 0xFF) != 0,
        .outMax = outMax,
        .outMin = outMin,
        .rangeMaxOut = rangeMaxOut,
        .rangeMinOut = rangeMinOut,
    };
    LibraryFloatingPoint guard;
    CallingHost caller(callback, user, guard.HostState());
    const frame::Host host = caller.ForLibrary();
    return exports::Work<GetImage>(&request, &host);
}

const char* Z3D_CALL SetRenderMsgTitle(const char* title) {
    return HostCall<frame::SetRenderMsgTitle>(title);
}
