#include "support/Refusals.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

namespace z3d::test {
namespace {

constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();

std::int64_t seen = 0;
std::int64_t firstRefused = kNever;
std::int64_t lastRefused = kNever;
std::array<std::int64_t, 5> outstanding{};
std::array<std::int64_t, 5> peak{};

void Plan(std::int64_t first, std::int64_t last) {
    seen = 0;
    firstRefused = first;
    lastRefused = last;
    peak = outstanding;
}

std::int64_t& CountOf(platform::Resource resource) { return outstanding[static_cast<std::size_t>(resource)]; }

} // namespace

void RefuseRequest(std::int64_t index) { Plan(index, index); }
void RefuseFrom(std::int64_t index) { Plan(index, kNever); }
void RefuseNothing() { Plan(kNever, kNever); }
std::int64_t RequestsSeen() { return seen; }
std::int64_t Outstanding(platform::Resource resource) { return CountOf(resource); }

std::int64_t OutstandingInTotal() {
    std::int64_t total = 0;
    for (const std::int64_t count : outstanding)
        total += count;
    return total;
}

std::int64_t PeakOutstanding(platform::Resource resource) { return peak[static_cast<std::size_t>(resource)]; }

} // namespace z3d::test

namespace z3d::platform {

bool IsRefused(Resource) {
    const std::int64_t index = test::seen++;
    return index >= test::firstRefused && index <= test::lastRefused;
}

void NoteGranted(Resource resource) {
    const auto kind = static_cast<std::size_t>(resource);
    test::peak[kind] = std::max(test::peak[kind], ++test::CountOf(resource));
}
void NoteReleased(Resource resource) { --test::CountOf(resource); }

} // namespace z3d::platform
