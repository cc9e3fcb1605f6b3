// GetRGBImage with what most tests do not care about filled in.
#pragma once

#include "compose/RgbImagePipeline.h"
#include "frame/Owned.h"
#include "support/RecordingHost.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace z3d::test {

// What the host's four floats hold before the call.
inline constexpr float kUntouched = 12345.0f;

struct ImageResult {
    frame::OwnedVolume volume;
    float outMax = kUntouched;
    float outMin = kUntouched;
    float rangeMax = kUntouched;
    float rangeMin = kUntouched;
};

// A request for `depth` slices of bytes at their own size.
compose::RgbImageRequest Request(const char* red, const char* green, const char* blue, std::int16_t width,
                                 std::int16_t height, std::int16_t depth);

// Makes the call with every output wanted.
ImageResult GetImage(compose::RgbImageRequest request, const frame::Host& host);

// The same for a host that only listens.
ImageResult GetImage(const compose::RgbImageRequest& request);

// Upper end first, as everywhere.
void ExpectDisplay(const ImageResult& result, float max, float min);
void ExpectRange(const ImageResult& result, float max, float min);

} // namespace z3d::test
