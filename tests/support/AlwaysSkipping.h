// While it exists, walks make and use their table of bounds, whether it pays or not.
#pragma once

#include "render/SkipPolicy.h"

namespace z3d::test {

class AlwaysSkipping {
public:
    AlwaysSkipping() { render::ForceSkipPolicy(render::SkipPolicy::Always); }
    ~AlwaysSkipping() { render::ForceSkipPolicy(render::SkipPolicy::WhereItPays); }
    AlwaysSkipping(const AlwaysSkipping&) = delete;
    AlwaysSkipping& operator=(const AlwaysSkipping&) = delete;
};

} // namespace z3d::test
