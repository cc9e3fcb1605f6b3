// Images and volumes that a scope owns.
#pragma once

#include "frame/Image2D.h"
#include "frame/Volume3D.h"

#include <memory>

namespace z3d::frame {

struct Free {
    void operator()(Image2D* image) const { frame::GlobalFree2D(image); }
    void operator()(Volume3D* volume) const { frame::GlobalFree3D(volume); }
};

using OwnedImage = std::unique_ptr<Image2D, Free>;
using OwnedVolume = std::unique_ptr<Volume3D, Free>;

} // namespace z3d::frame
