// Times several candidates in turn, round after round, so that whatever else the machine does hits all of them.
#pragma once

#include <functional>
#include <vector>

namespace z3d::bench {

// Seconds of each candidate: the smallest of its rounds. Rounds go on for about `seconds`, at least three.
std::vector<double> TimeInTurn(const std::vector<std::function<void()>>& candidates, double seconds);

} // namespace z3d::bench
