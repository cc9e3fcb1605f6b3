#include "render/SkipPolicy.h"

#include <atomic>

namespace z3d::render {
namespace {

std::atomic<SkipPolicy> current{SkipPolicy::WhereItPays};

} // namespace

SkipPolicy CurrentSkipPolicy() { return current.load(std::memory_order_relaxed); }

void ForceSkipPolicy(SkipPolicy policy) { current.store(policy, std::memory_order_relaxed); }

} // namespace z3d::render
