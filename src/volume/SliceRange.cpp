#include "volume/SliceRange.h"

namespace z3d::volume {

using primitives::ValueRange;

void WidenByPixels(ValueRange& range, const frame::LockedImage& image) {
    if (image.BytesPerPixel() == 4) {
        WidenByFloats(range, image.Floats(), image.PixelCount());
    } else {
        WidenByBytes(range, image.Bytes(), image.ByteCount());
    }
}

bool WidenBySlice(ValueRange& range, Image2D* slice) {
    const frame::LockedImage locked(slice);
    if (!locked) return false;
    WidenByPixels(range, locked);
    return true;
}

} // namespace z3d::volume
