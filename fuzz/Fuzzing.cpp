#include "Fuzzing.h"

#include "platform/Refusal.h"

#include <cstddef>
#include <cstdlib>

namespace {

int seen = 0;
int refused = z3d::fuzz::kNever;
int outstanding = 0;

} // namespace

namespace z3d::fuzz {

void RefuseRequest(int index) {
    seen = 0;
    refused = index;
}

int Outstanding() { return outstanding; }

} // namespace z3d::fuzz

namespace z3d::platform {

bool IsRefused(Resource) { return seen++ == refused; }
void NoteGranted(Resource) { ++outstanding; }
void NoteReleased(Resource) { --outstanding; }
void* AllocateFromHeap(std::size_t bytes) { return std::malloc(bytes); }
void FreeToHeap(void* memory) { std::free(memory); }

} // namespace z3d::platform
