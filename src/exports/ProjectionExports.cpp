#include "Zentra3DRendering.h"

#include "exports/HostCall.h"
#include "render/RotProjection.h"

using namespace z3d;
using exports::HostCall;
using exports::Only16Bits;

namespace {

// Hosts count voxels from 1.
render::CropBox CropFromHost(short x0, short x1, short y0, short y1, short z0, short z1) {
    return {Only16Bits(x0) - 1, Only16Bits(x1) - 1, Only16Bits(y0) - 1,
            Only16Bits(y1) - 1, Only16Bits(z0) - 1, Only16Bits(z1) - 1};
}

} // namespace

float* Z3D_CALL GetRotProjection(Volume3D* volume, const float* rotation, short mode, short x0, short x1,
                                 short y0, short y1, short z0, short z1, float high, float low, float extra,
                                 unsigned short* width, unsigned short* height, int reserved) {
    return HostCall<render::GetRotProjection>(
        volume, rotation, Only16Bits(mode), CropFromHost(x0, x1, y0, y1, z0, z1),
        render::RenderArguments{high, low, extra}, width, height, reserved);
}

void Z3D_CALL GetRotDim(Volume3D* volume, const float* rotation, short x0, short x1, short y0, short y1,
                        short z0, short z1, unsigned short* width, unsigned short* height, int reserved) {
    HostCall<render::GetRotDim>(volume, rotation, CropFromHost(x0, x1, y0, y1, z0, z1), width, height,
                                reserved);
}
