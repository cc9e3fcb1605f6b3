// Whether rays pass over what a table of bounds tells them to.
#pragma once

namespace z3d::render {

// Results are the same either way. Walks make a table where it promises to save more than it costs, and give it up
// where it does not: small volumes would seldom see one.
enum class SkipPolicy { WhereItPays, Always };

SkipPolicy CurrentSkipPolicy();

// For tests. Not for use while another thread renders.
void ForceSkipPolicy(SkipPolicy policy);

} // namespace z3d::render
