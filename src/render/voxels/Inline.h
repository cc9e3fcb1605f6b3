// For functions in headers that sources of several instruction sets include. Left to itself, the compiler may emit
// such a function in every object, and the linker may keep the one with the newest instructions for everybody.
#pragma once

#define Z3D_INLINE [[gnu::always_inline]] inline
