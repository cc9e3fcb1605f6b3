// The guard around every exported call. A host may call with any floating-point environment and a stack that
// is aligned to 4 bytes only (this folder is compiled to realign it at each entry).
#pragma once

#include "platform/FloatingPoint.h"

namespace z3d::exports {

// An argument of 16 bits; above them its register or slot holds what the host left there. Clang for Linux takes it for
// extended by the caller, so where it comes from is hidden from the compiler.
inline short Only16Bits(short argument) {
    asm("" : "+r"(argument));
    return argument;
}

class LibraryFloatingPoint {
public:
    LibraryFloatingPoint() { platform::EnterLibraryFloatingPoint(host_); }
    ~LibraryFloatingPoint() { platform::RestoreFloatingPoint(host_); }
    LibraryFloatingPoint(const LibraryFloatingPoint&) = delete;
    LibraryFloatingPoint& operator=(const LibraryFloatingPoint&) = delete;

    // What will be put back. Code of the host that runs within the call sees and changes this.
    platform::FloatingPointState& HostState() { return host_; }

private:
    platform::FloatingPointState host_;
};

// The other way round, while code of the host runs within a call. What it leaves behind is what the host finds
// after the call.
class HostFloatingPoint {
public:
    explicit HostFloatingPoint(platform::FloatingPointState& host) : host_(host) {
        platform::RestoreFloatingPoint(host_);
    }
    ~HostFloatingPoint() { platform::EnterLibraryFloatingPoint(host_); }
    HostFloatingPoint(const HostFloatingPoint&) = delete;
    HostFloatingPoint& operator=(const HostFloatingPoint&) = delete;

private:
    platform::FloatingPointState& host_;
};

// The work of a call is a function of its own: inlined, its conversions could move past the switch of the
// floating-point environment, which the optimiser does not see as a dependency.
template <auto Function, class... Arguments>
[[gnu::noinline]] auto Work(Arguments... arguments) {
    return Function(arguments...);
}

// Calls an internal function in the library's own floating-point environment.
template <auto Function, class... Arguments>
auto HostCall(Arguments... arguments) {
    const LibraryFloatingPoint guard;
    return Work<Function>(arguments...);
}

} // namespace z3d::exports
