// Memory beside pages that cannot be accessed: a single byte too far, read or written, ends the program at once.
// Memory checkers see such accesses too, but not those of the shipped 32-bit code.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace z3d::test {

// Which end is guarded to the byte. The other one is so too where the bytes fill whole pages.
enum class GuardedEnd { First, Last };

// Zeroes. Throws std::bad_alloc when memory is short.
class GuardedBytes {
public:
    GuardedBytes(std::size_t bytes, GuardedEnd end);
    ~GuardedBytes();
    GuardedBytes(GuardedBytes&& other) noexcept;
    GuardedBytes(const GuardedBytes&) = delete;
    GuardedBytes& operator=(const GuardedBytes&) = delete;

    template <class T>
    T* As() const {
        return reinterpret_cast<T*>(bytes_);
    }

private:
    std::uint8_t* pages_; // the whole reservation, guards included
    std::size_t reserved_;
    std::uint8_t* bytes_;
};

// While it lives, a fault prints what was being done and ends the program with kExitCode: it cannot be survived.
class FaultReport {
public:
    static constexpr int kExitCode = 97;

    FaultReport();
    ~FaultReport();
    FaultReport(const FaultReport&) = delete;
    FaultReport& operator=(const FaultReport&) = delete;

    static void Say(const std::string& doing);
};

} // namespace z3d::test
