// Owners of what the library hands to its host: volumes, their locks and projections.
#pragma once

#include <windows.h>

#include <memory>

#include "Zentra3DRendering.h"

namespace z3d::tools {

struct VolumeDeleter {
    void operator()(Volume3D* volume) const { GlobalFree3D(volume); }
};
using VolumeOwner = std::unique_ptr<Volume3D, VolumeDeleter>;

// The bytes of a volume while it is locked. The rows of a slice lie one after another, so its first row
// addresses the whole slice.
class VolumeLock {
public:
    explicit VolumeLock(Volume3D& volume) : volume_(volume), slices_(GlobalLock3D(&volume)) {}
    ~VolumeLock() {
        if (slices_ != nullptr) GlobalUnlock3D(&volume_);
    }
    VolumeLock(const VolumeLock&) = delete;
    VolumeLock& operator=(const VolumeLock&) = delete;

    bool Held() const { return slices_ != nullptr; }
    unsigned char* Slice(int z) const { return slices_[z][0]; }

private:
    Volume3D& volume_;
    unsigned char*** slices_;
};

// The pixels of a projection are a locked block of global memory, known by its address.
struct ProjectionDeleter {
    void operator()(float* pixels) const {
        const HGLOBAL block = GlobalHandle(pixels);
        GlobalUnlock(block);
        GlobalFree(block);
    }
};
using ProjectionOwner = std::unique_ptr<float, ProjectionDeleter>;

} // namespace z3d::tools
