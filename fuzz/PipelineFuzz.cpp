// GetRGBImage with random sizes, flags and files; a random request refused or a random call cancelled.
//
// Whatever happens, nothing may be left over and a null result is followed by the last call of the callback.
// Where nothing was refused or cancelled, the result has to be the plain form's, bit for bit.
#include "Fuzzing.h"

#include "compose/RgbImagePipeline.h"
#include "frame/LockedImage.h"
#include "frame/Owned.h"
#include "reference/PlainPipeline.h"

#include <sys/mman.h>
#include <unistd.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

using namespace z3d;
using namespace z3d::fuzz;

// Mostly small lengths, sometimes none or a negative one; the largest slice stays small.
std::int16_t AnyLength(FuzzedDataProvider& input) {
    const auto byte = input.ConsumeIntegral<std::uint8_t>();
    if (byte >= 252) return static_cast<std::int16_t>(0x8000 | input.ConsumeIntegral<std::uint8_t>() << 4);
    return static_cast<std::int16_t>(byte % 48);
}

// A file without a disk; the system's path of an open descriptor opens it anew.
class MemoryFile {
public:
    explicit MemoryFile(const reference::FileBytes& bytes) : descriptor_(memfd_create("channel", 0)) {
        Require(descriptor_ >= 0);
        Require(write(descriptor_, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()));
        name_ = "/proc/self/fd/" + std::to_string(descriptor_);
    }
    ~MemoryFile() { close(descriptor_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    const char* Name() const { return name_.c_str(); }

private:
    int descriptor_;
    std::string name_;
};

struct FuzzedHost {
    int cancelAt = kNever;
    int calls = 0;
    int warnings = 0;
    std::int32_t lastCode = kNever;

    static std::int32_t Report(void* context, std::int32_t code, std::uint32_t) {
        auto& self = *static_cast<FuzzedHost*>(context);
        self.lastCode = code;
        return self.calls++ == self.cancelAt ? 0x7FFF00C8 : 0x00C80000;
    }
    static void Warn(void* context, const char*) { ++static_cast<FuzzedHost*>(context)->warnings; }
};

// Which of the two files a channel names: none, the first or the second.
struct Names {
    int red, green, blue;
};

struct Outputs {
    float outMax, outMin, rangeMax, rangeMin;
};

bool SameBits(float a, float b) { return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b); }

void RequirePlain(const Volume3D& volume, const Outputs& outputs, const reference::RgbImage& plain) {
    Require(volume.width == plain.volume.width && volume.height == plain.volume.height);
    Require(volume.depth == plain.volume.depth);
    const std::uint8_t* expected = plain.volume.voxels.data();
    for (std::size_t z = 0; z < volume.depth; ++z) {
        const frame::LockedImage slice(volume.slices[z]);
        Require(static_cast<int>(slice.BytesPerPixel()) == plain.volume.bytesPerVoxel);
        Require(std::memcmp(slice.Bytes(), expected, slice.ByteCount()) == 0);
        expected += slice.ByteCount();
    }
    Require(SameBits(outputs.outMax, plain.display.max) && SameBits(outputs.outMin, plain.display.min));
    Require(SameBits(outputs.rangeMax, plain.range.max) && SameBits(outputs.rangeMin, plain.range.min));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    compose::RgbImageRequest request = {};
    request.width = AnyLength(input);
    request.height = AnyLength(input);
    request.depth = static_cast<std::int16_t>(AnyLength(input) % 16);
    request.maxDiagonal = input.ConsumeIntegral<std::int16_t>();
    const std::uint8_t flags = input.ConsumeIntegral<std::uint8_t>();
    request.is8bit = (flags & 1) != 0;
    request.keepChannelsApart = (flags & 2) != 0;
    const bool hasCallback = (flags & 4) != 0;
    const std::uint8_t named = input.ConsumeIntegral<std::uint8_t>();
    const Names names = {named % 3, named / 3 % 3, named / 9 % 3};
    FuzzedHost host;
    host.cancelAt = (flags & 8) != 0 ? input.ConsumeIntegral<std::uint8_t>() : kNever;
    RefuseRequest((flags & 16) != 0 ? input.ConsumeIntegral<std::uint8_t>() : kNever);

    const reference::FileBytes firstBytes = input.ConsumeBytes<std::uint8_t>(input.remaining_bytes() / 2);
    const reference::FileBytes bytes[2] = {firstBytes, input.ConsumeRemainingBytes<std::uint8_t>()};
    const MemoryFile first(bytes[0]);
    const MemoryFile second(bytes[1]);
    const char* const paths[3] = {nullptr, first.Name(), second.Name()};
    request.redFile = paths[names.red];
    request.greenFile = paths[names.green];
    request.blueFile = paths[names.blue];
    Outputs outputs = {};
    request.outMax = &outputs.outMax;
    request.outMin = &outputs.outMin;
    request.rangeMaxOut = &outputs.rangeMax;
    request.rangeMinOut = &outputs.rangeMin;

    frame::OwnedVolume volume(
        compose::GetRGBImage(request, {&host, hasCallback ? FuzzedHost::Report : nullptr, FuzzedHost::Warn}));

    const bool isDisturbed = (flags & 24) != 0;
    const bool isValid = request.width > 0 && request.height > 0 && request.depth > 0
                         && (names.red != 0 || names.green != 0 || names.blue != 0);
    if (!isDisturbed) Require((volume != nullptr) == isValid && host.warnings == 0);
    if (hasCallback) Require((volume == nullptr) == (host.lastCode == 0));
    if (volume && !isDisturbed) {
        // Files of the same name are shared, so they are the same object; others are copies.
        const reference::FileBytes green = bytes[names.green == 2];
        const reference::FileBytes blue = bytes[names.blue == 2];
        const reference::FileBytes* red = names.red != 0 ? &bytes[names.red - 1] : nullptr;
        const auto channel = [&](int name, const reference::FileBytes& copy) {
            const bool isShared = name == names.red && !request.keepChannelsApart;
            return name == 0 ? nullptr : isShared ? red : &copy;
        };
        RequirePlain(*volume, outputs,
                     reference::MakeRgbImage({red,
                                              channel(names.green, green),
                                              channel(names.blue, blue),
                                              {request.width, request.height, request.depth},
                                              request.is8bit,
                                              request.maxDiagonal}));
    }
    volume.reset();
    Require(Outstanding() == 0);
    return 0;
}
