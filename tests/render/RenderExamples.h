// Worked examples that every renderer has to meet, whatever its form: the suite takes the renderer under test
// as its parameter, and each form of the renderer instantiates it in a file of its own.
#pragma once

#include "reference/ReferenceRenderer.h"
#include "support/ProceduralVolumes.h"
#include "support/RandomRequests.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <initializer_list>
#include <ostream>
#include <vector>

namespace z3d::test {

struct RendererUnderTest {
    const char* name;
    reference::Projection (*render)(const reference::Volume&, const reference::Request&);
    bool runsHere = true; // false where the processor lacks what it needs
};

inline std::ostream& operator<<(std::ostream& out, const RendererUnderTest& renderer) {
    return out << renderer.name;
}

class RenderExamples : public ::testing::TestWithParam<RendererUnderTest> {
protected:
    void SetUp() override {
        if (!GetParam().runsHere) GTEST_SKIP() << "this processor lacks the instruction set";
    }

    reference::Projection Render(const reference::Volume& volume, const reference::Request& request) const {
        return GetParam().render(volume, request);
    }
};

// What the pixels without a contribution hold.
inline constexpr float kSentinel = -3.4028234663852886e38f;

inline constexpr Rotation kQuarterAboutY = {0, 0, 1, 0, 1, 0, -1, 0, 0};

// Voxels of one byte, in the order of storage: x fastest, then y, then z.
reference::Volume GreyVolume(int width, int height, int depth, std::initializer_list<int> voxels);
// A column of voxels along z, one of them per slice of 1 x 1, so that a plain view walks them in order.
reference::Volume GreyColumn(std::initializer_list<int> voxels);
reference::Volume ColourColumn(std::initializer_list<std::array<int, 3>> voxels);
// Slices of side x side equal voxels, one value per slice.
reference::Volume GreySlices(int side, std::initializer_list<int> values);
reference::Volume ColourSlices(int side, std::initializer_list<std::array<int, 3>> colours);

reference::Request WithWindow(reference::Request request, float low, float high);
reference::Request WithExtra(reference::Request request, float extra);
reference::Request WithCropX(reference::Request request, int first, int last);
reference::Request WithCropZ(reference::Request request, int first, int last);

// Compares all floats of all pixels by their bits.
::testing::AssertionResult HasPixels(const reference::Projection& projection, std::vector<float> expected);
// The same for projections whose three floats are equal in each pixel.
::testing::AssertionResult HasGreyPixels(const reference::Projection& projection,
                                         const std::vector<float>& expected);

} // namespace z3d::test
