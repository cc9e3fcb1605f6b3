// The library's three functions that release a picture, as a host takes them that may have others of these names.
#pragma once

#include "Zentra3DRendering.h"

namespace z3d::test {

struct PictureRelease {
    decltype(&::GlobalHandle) GlobalHandle;
    decltype(&::GlobalUnlock) GlobalUnlock;
    decltype(&::GlobalFree) GlobalFree;
};

const PictureRelease& ThePictureRelease();

} // namespace z3d::test
