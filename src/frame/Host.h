// How a long call reaches its host: progress, cancellation and warnings.
#pragma once

#include <cstdint>

namespace z3d::frame {

enum class Answer { GoOn, Cancel };

// A value that the entry layer makes for one call and hands down. Code of the host runs inside both functions;
// the entry layer sees to what that code expects of its thread.
struct Host {
    void* context; // passed to both functions
    // The host's progress callback; null when there is none: then nothing is ever reported or cancelled. `value`
    // is the bit pattern of a float, or 0. Of the result only the low 16 bits count.
    std::int32_t (*report)(void* context, std::int32_t code, std::uint32_t value);
    // Shows a warning and waits until the user has dismissed it.
    void (*warn)(void* context, const char* text);

    // A phase of work begins: once, with its inputs open, before its first unit.
    [[nodiscard]] Answer Start() const;

    // How far the phase is, in percent: unit z (from 0) of n is done, or in phases that report before a unit,
    // about to be.
    [[nodiscard]] Answer Progress(std::int32_t z, std::int32_t n) const;

    // The whole call ends without a result, whether it failed or was cancelled.
    void EndedWithoutResult() const;

    // A conversion could not even begin.
    void CannotRun() const;

    void Warn(const char* text) const { warn(context, text); }
};

} // namespace z3d::frame
