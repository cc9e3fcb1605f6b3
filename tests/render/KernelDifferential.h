// The product against the plain form on chosen volumes and views, for every kernel (mode, kind of surface, grey or
// colour), bit for bit on every instruction set that the processor has.
#pragma once

#include "support/HostVolume.h"
#include "support/ProceduralVolumes.h"
#include "support/RandomRequests.h"

#include <gtest/gtest.h>

#include <array>
#include <ostream>
#include <utility>
#include <vector>

namespace z3d::test {

struct KernelCase {
    const char* name;
    RenderMode mode;
    float extra;
    int bytesPerVoxel;
};
std::ostream& operator<<(std::ostream& out, const KernelCase& kernel);

// All seven modes and both kinds of surface, first in grey, then in colour.
std::vector<KernelCase> AllKernels();

// A volume in both forms.
class ComparedVolume {
public:
    explicit ComparedVolume(reference::Volume plain) : plain_(std::move(plain)), host_(plain_) {}

    // Whether the product gives the plain form's bits on every instruction set. The message has the request.
    ::testing::AssertionResult IsRenderedAlike(const reference::Request& request) const;

    const reference::Volume& Plain() const { return plain_; }

private:
    const reference::Volume plain_;
    const HostVolume host_;
};

using Colour = std::array<int, 3>;

// Grey takes the first channel.
void SetVoxel(reference::Volume& volume, int x, int y, int z, const Colour& colour);
void Fill(reference::Volume& volume, const Colour& colour);
// What the window looks at.
inline int ValueOf(const Colour& colour, int bytesPerVoxel) {
    return bytesPerVoxel == 1 ? colour[0] : colour[0] + colour[1] + colour[2];
}

// The whole volume as a kernel sees it. The window has every value inside, also where it is strict; for colour it is
// one of channel sums.
reference::Request ViewOf(const KernelCase& kernel, const reference::Volume& volume, const Rotation& rotation,
                          float low = -1, float high = 766);

// For suites that are more than volumes and views: those stand in the table of views (ViewTable.h).
class KernelDifferential : public ::testing::TestWithParam<KernelCase> {
protected:
    static int BytesPerVoxel() { return GetParam().bytesPerVoxel; }
    static VolumeSize Size(int width, int height, int depth) {
        return {width, height, depth, BytesPerVoxel()};
    }
    static reference::Request ViewOf(const reference::Volume& volume, const Rotation& rotation,
                                     float low = -1, float high = 766) {
        return test::ViewOf(GetParam(), volume, rotation, low, high);
    }
};

} // namespace z3d::test
