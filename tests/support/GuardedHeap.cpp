#include "support/GuardedHeap.h"

#include "platform/Refusal.h"

#include <cstdlib>
#include <map>
#include <optional>

namespace z3d::test {
namespace {

constexpr std::size_t kAlignment = 16;

std::optional<GuardedEnd> guardedEnd;
std::map<void*, GuardedBytes> guarded; // by address

} // namespace

GuardedHeap::GuardedHeap(GuardedEnd end) { guardedEnd = end; }
GuardedHeap::~GuardedHeap() { guardedEnd.reset(); }

} // namespace z3d::test

namespace z3d::platform {

void* AllocateFromHeap(std::size_t bytes) {
    if (!test::guardedEnd) return std::malloc(bytes);
    const std::size_t whole = (bytes + test::kAlignment - 1) / test::kAlignment * test::kAlignment;
    test::GuardedBytes block(whole, *test::guardedEnd);
    void* address = block.As<void>();
    test::guarded.emplace(address, std::move(block));
    return address;
}

void FreeToHeap(void* memory) {
    if (test::guarded.erase(memory) == 0) std::free(memory);
}

} // namespace z3d::platform
