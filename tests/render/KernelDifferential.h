// The product against the plain form on chosen volumes and views: a suite per topic, run for every kernel (mode,
// kind of surface, grey or colour), bit for bit on every instruction set that the processor has.
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

class KernelDifferential : public ::testing::TestWithParam<KernelCase> {
protected:
    using Colour = std::array<int, 3>;

    static int BytesPerVoxel() { return GetParam().bytesPerVoxel; }
    static VolumeSize Size(int width, int height, int depth) {
        return {width, height, depth, BytesPerVoxel()};
    }

    // The whole volume with every value inside the window, also where the window is strict.
    static reference::Request ViewOf(const reference::Volume& volume, const Rotation& rotation);
    // The same with a window, which for colour is one of channel sums.
    static reference::Request ViewOf(const reference::Volume& volume, const Rotation& rotation, float low,
                                     float high);

    // Grey takes the first channel.
    static void SetVoxel(reference::Volume& volume, int x, int y, int z, const Colour& colour);
    static void Fill(reference::Volume& volume, const Colour& colour);
    // What the window looks at.
    static int ValueOf(const Colour& colour) {
        return BytesPerVoxel() == 1 ? colour[0] : colour[0] + colour[1] + colour[2];
    }
};

} // namespace z3d::test
