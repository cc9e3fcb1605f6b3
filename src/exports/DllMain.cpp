// The library's unloading. Nothing happens when it is loaded.
#include "frame/MessageTitle.h"

namespace {

constexpr unsigned long kProcessDetach = 0;

} // namespace

// The system's declaration, in plain types.
extern "C" int __stdcall DllMain(void* module, unsigned long reason, void* processEnds);

int __stdcall DllMain(void*, unsigned long reason, void* processEnds) {
    // At the end of the process other threads may have died inside the heap, and all of it goes anyway.
    if (reason == kProcessDetach && processEnds == nullptr) z3d::frame::ReleaseMessageTitle();
    return 1;
}
