// What a host does by its system rather than by the library: one source for Windows, one for Linux.
#pragma once

#include <cstddef>

namespace z3d::test {

// Whether the pixels begin a block of this size. Windows knows it exactly; elsewhere the heap says what it rounded the
// size up to.
bool IsBlockOf(const void* pixels, std::size_t bytes);

// The handle of the block that is locked at this address.
const void* HandleOf(const void* pixels);

// Frees pixels by the documented route. False when no block belongs to them, or it is not locked exactly once.
bool ReleaseProjection(float* pixels);

// Processor exceptions that were raised so far in this program, inside calls of the library or not.
int ExceptionsRaised();

} // namespace z3d::test
