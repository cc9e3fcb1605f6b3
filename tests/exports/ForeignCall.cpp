#include "exports/ForeignCallMachine.h"
#include "exports/HostSide.h"

namespace z3d::test {
namespace {

volatile int exceptionsRaised = 0;

bool IsFloatingPointException(DWORD code) {
    switch (code) {
    case EXCEPTION_FLT_DENORMAL_OPERAND:
    case EXCEPTION_FLT_DIVIDE_BY_ZERO:
    case EXCEPTION_FLT_INEXACT_RESULT:
    case EXCEPTION_FLT_INVALID_OPERATION:
    case EXCEPTION_FLT_OVERFLOW:
    case EXCEPTION_FLT_STACK_CHECK:
    case EXCEPTION_FLT_UNDERFLOW:
    case STATUS_FLOAT_MULTIPLE_FAULTS:
    case STATUS_FLOAT_MULTIPLE_TRAPS:
        return true;
    default:
        return false;
    }
}

// Counts, and lets a floating-point exception go on masked, so that the test can report it.
LONG CALLBACK CountException(EXCEPTION_POINTERS* raised) {
    exceptionsRaised = exceptionsRaised + 1;
    if (!IsFloatingPointException(raised->ExceptionRecord->ExceptionCode)) return EXCEPTION_CONTINUE_SEARCH;
    MaskExceptions(*raised->ContextRecord);
    return EXCEPTION_CONTINUE_EXECUTION;
}

[[maybe_unused]] void* const handler = AddVectoredExceptionHandler(1, CountException);

} // namespace

CallOutcome CallForeign(const void* function, std::span<const Slot> slots, unsigned misalignment,
                        const FloatingPointEnvironment& before) {
    const int raisedBefore = exceptionsRaised;
    CallOutcome outcome = CallOnThisMachine(function, slots, misalignment, before);
    outcome.exceptionsRaised = exceptionsRaised - raisedBefore;
    return outcome;
}

int ExceptionsRaised() { return exceptionsRaised; }

} // namespace z3d::test
