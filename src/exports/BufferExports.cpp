#include "Zentra3DRendering.h"

#include "exports/HostCall.h"
#include "frame/Image2D.h"
#include "frame/Volume3D.h"

using namespace z3d;
using exports::HostCall;

Image2D* Z3D_CALL GlobalAlloc2D(unsigned int width, unsigned int height, unsigned int bytesPerPixel) {
    return HostCall<frame::GlobalAlloc2D>(width, height, bytesPerPixel);
}

Volume3D* Z3D_CALL GlobalAlloc3D(unsigned int width, unsigned int height, unsigned int depth,
                                 unsigned int bytesPerPixel) {
    return HostCall<frame::GlobalAlloc3D>(width, height, depth, bytesPerPixel);
}

unsigned char** Z3D_CALL GlobalLock2D(Image2D* image) { return HostCall<frame::GlobalLock2D>(image); }

unsigned char*** Z3D_CALL GlobalLock3D(Volume3D* volume) { return HostCall<frame::GlobalLock3D>(volume); }

int Z3D_CALL GlobalUnlock2D(Image2D* image) { return HostCall<frame::GlobalUnlock2D>(image); }

int Z3D_CALL GlobalUnlock3D(Volume3D* volume) { return HostCall<frame::GlobalUnlock3D>(volume); }

void Z3D_CALL GlobalFree2D(Image2D* image) { HostCall<frame::GlobalFree2D>(image); }

void Z3D_CALL GlobalFree3D(Volume3D* volume) { HostCall<frame::GlobalFree3D>(volume); }

void Z3D_CALL Free3DData(Volume3D* volume) { HostCall<frame::GlobalFree3D>(volume); }
