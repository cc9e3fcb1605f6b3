#include "render/StretchProbe.h"

namespace z3d::test {

namespace sse2 {
extern const StretchProbe kStretchProbe;
}
namespace avx2 {
extern const StretchProbe kStretchProbe;
}
namespace avx512 {
extern const StretchProbe kStretchProbe;
}

const StretchProbe& ProbeOf(render::InstructionSet set) {
    if (set >= render::InstructionSet::Avx512) return avx512::kStretchProbe;
    return set == render::InstructionSet::Avx2 ? avx2::kStretchProbe : sse2::kStretchProbe;
}

} // namespace z3d::test
