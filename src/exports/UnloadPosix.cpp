// The library's unloading. Nothing happens when it is loaded.
#include "frame/MessageTitle.h"

namespace {

[[gnu::destructor]] void ReleaseState() { z3d::frame::ReleaseMessageTitle(); }

} // namespace
