// What of a foreign call depends on the machine: ForeignCall32.cpp and ForeignCall64.cpp, one of which is compiled.
#pragma once

#include "exports/ForeignCall.h"

#include <windows.h>

namespace z3d::test {

// A foreign call without a count of exceptions.
CallOutcome CallOnThisMachine(const void* function, std::span<const Slot> slots, unsigned misalignment,
                              const FloatingPointEnvironment& before);

// Masks what a raised floating-point exception left unmasked, so that the program can go on.
void MaskExceptions(CONTEXT& context);

} // namespace z3d::test

// A callee that writes its stack pointer down and returns.
extern "C" void Z3dNoteStack();
extern "C" z3d::test::Slot Z3dStackAtEntry;
