// Refuses the platform's grants in turn, and counts what is outstanding.
#pragma once

#include "platform/Refusal.h"

#include <cstdint>

namespace z3d::test {

// Every request (of any kind) counts; the one with this index, from 0, is refused, and only that one.
void RefuseRequest(std::int64_t index);
// From this request on, all are refused.
void RefuseFrom(std::int64_t index);
// Nothing is refused any more.
void RefuseNothing();

// Requests seen since the last call of one of the three functions above.
std::int64_t RequestsSeen();

// What was granted and not yet released.
std::int64_t Outstanding(platform::Resource resource);
std::int64_t OutstandingInTotal();
// The most of a kind that was outstanding at a time since the last of RefuseRequest, RefuseFrom, RefuseNothing.
std::int64_t PeakOutstanding(platform::Resource resource);

// Calls `work` with no refusal, then once per request that it makes with exactly that request refused, then
// checks that nothing is left over each time. `work(refused)` does its own expectations.
template <class Work>
void ForEveryRefusal(Work work);

} // namespace z3d::test

#include "support/Refusals.inl"
