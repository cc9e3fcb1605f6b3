// What a host takes of Windows to release a picture, for systems that have no global memory of their own. Like there, a
// handle or an address that is none is looked up, not touched.
#include "Zentra3DRendering.h"

#include "platform/GlobalMemory.h"

using namespace z3d;

void* Z3D_CALL GlobalHandle(const void* address) { return platform::BlockFromAddress(address); }

int Z3D_CALL GlobalUnlock(void* block) { return platform::IsBlock(block) ? platform::BlockUnlock(block) : 0; }

void* Z3D_CALL GlobalFree(void* block) { return platform::BlockFreeIfThere(block) ? nullptr : block; }
