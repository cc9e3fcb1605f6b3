#include "support/Refusals.h"

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

void Plan(std::int64_t first, std::int64_t last) {
    seen = 0;
    firstRefused = first;
    lastRefused = last;
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

} // namespace z3d::test

namespace z3d::platform {

bool IsRefused(Resource) {
    const std::int64_t index = test::seen++;
    return index >= test::firstRefused && index <= test::lastRefused;
}

void NoteGranted(Resource resource) { ++test::CountOf(resource); }
void NoteReleased(Resource resource) { --test::CountOf(resource); }

} // namespace z3d::platform
