// Compares two projections to the last bit.
#pragma once

#include "reference/ReferenceRenderer.h"

#include <gtest/gtest.h>

namespace z3d::test {

// A failure names the first differing pixel with both bit patterns, and counts the others.
::testing::AssertionResult SameBits(const reference::Projection& expected,
                                    const reference::Projection& actual);

} // namespace z3d::test
