// Where tests may refuse what the platform would have granted. The shipped build has no hook: every call
// below is an empty inline function.
#pragma once

namespace z3d::platform {

enum class Resource { Heap, Block, BlockLock, FileOpen, FileRead };

#ifdef Z3D_REFUSABLE
// Implemented by tests/support. True: the request that is about to be made has to fail.
bool IsRefused(Resource resource);
void NoteGranted(Resource resource);
void NoteReleased(Resource resource);
#else
inline bool IsRefused(Resource) { return false; }
inline void NoteGranted(Resource) {}
inline void NoteReleased(Resource) {}
#endif

} // namespace z3d::platform
