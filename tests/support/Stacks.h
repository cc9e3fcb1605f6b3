// Volumes from literals, and back.
#pragma once

#include "frame/Owned.h"
#include "reference/ReferenceRenderer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace z3d::test {

// Slice by slice, row by row.
reference::Volume ByteStack(int width, int height, int depth, std::vector<std::uint8_t> samples);
reference::Volume RgbStack(int width, int height, int depth, std::vector<std::uint8_t> samples);
reference::Volume FloatStack(int width, int height, int depth, const std::vector<float>& samples);

// The same voxels in a new unlocked volume; depth 0 is fine.
frame::OwnedVolume ToVolume(const reference::Volume& stack);

// The samples' bits as a file holds them.
std::vector<std::uint8_t> FileBytesOf(const std::vector<float>& samples);

// Compares size, format and every sample, bit for bit; all slices of `actual` have to be unlocked. Only which NaN
// a sample is does not count: no rule says which of two an operation keeps.
::testing::AssertionResult HasSamples(Volume3D* actual, const reference::Volume& expected);

} // namespace z3d::test
