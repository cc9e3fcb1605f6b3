// The table of views: per topic, volumes and views of them that the product has to render as the plain form does. Each
// topic is visited with every kernel; its sources are the *Topics.cpp.
#pragma once

#include "render/KernelDifferential.h"

#include <optional>
#include <utility>
#include <vector>

namespace z3d::test {

// Goes from volume to volume, and compares each view of it bit for bit on every instruction set.
class Visit {
public:
    explicit Visit(const KernelCase& kernel) : kernel_(kernel) {}

    const KernelCase& Kernel() const { return kernel_; }
    int BytesPerVoxel() const { return kernel_.bytesPerVoxel; }
    VolumeSize Size(int width, int height, int depth) const {
        return {width, height, depth, kernel_.bytesPerVoxel};
    }

    // What is seen from now on.
    void Show(reference::Volume volume) { compared_.emplace(std::move(volume)); }
    const reference::Volume& Volume() const { return compared_->Plain(); }

    // All of it, with every value inside the window, or in a window that for colour is one of channel sums.
    reference::Request View(const Rotation& rotation, float low = -1, float high = 766) const {
        return ViewOf(kernel_, Volume(), rotation, low, high);
    }

    // After the first difference nothing more is compared.
    void See(const reference::Request& request);
    int Seen() const { return seen_; }

private:
    const KernelCase kernel_;
    std::optional<ComparedVolume> compared_;
    int seen_ = 0;
    bool isDifferent_ = false;
};

inline bool IsAny(const KernelCase&) { return true; }
inline bool IsSum(const KernelCase& kernel) { return kernel.mode == RenderModeSum; }
inline bool IsContrast(const KernelCase& kernel) { return kernel.mode == RenderModeContrast; }
inline bool IsLayers(const KernelCase& kernel) {
    return kernel.mode == RenderModeSurface && kernel.extra != 0;
}

struct Topic {
    const char* name;
    void (*show)(Visit& visit);
    bool (*suits)(const KernelCase& kernel) = IsAny;
};

std::vector<Topic> AlignedTopics();
std::vector<Topic> CropTopics();
std::vector<Topic> SizeTopics();
std::vector<Topic> MatrixTopics();
std::vector<Topic> VoxelTopics();

} // namespace z3d::test
