// Small complete uses of the exports, each of which a host in any condition must bring to the same bytes.
#pragma once

#include "exports/ForeignHost.h"

#include <cstddef>
#include <limits>
#include <ostream>
#include <span>
#include <string_view>
#include <vector>

namespace z3d::test {

using FloatLimits = std::numeric_limits<float>;

// What a scenario found out, appended piece by piece.
class Findings {
public:
    template <class Value>
    void Add(const Value& value) {
        AddBytes(&value, sizeof value);
    }
    void AddBytes(const void* bytes, std::size_t count) {
        const auto* first = static_cast<const unsigned char*>(bytes);
        bytes_.insert(bytes_.end(), first, first + count);
    }
    const std::vector<unsigned char>& Bytes() const { return bytes_; }

private:
    std::vector<unsigned char> bytes_;
};

struct Scenario {
    const char* name;
    std::vector<std::string_view> exports; // the ones it calls; it is left out where one of them is missing
    void (*run)(ForeignHost& host, Findings& findings);
};

std::vector<Scenario> AllScenarios();

// Those of rotations, angles, gamma and sub-volumes.
std::span<const Scenario> GeometryScenarios();

// Those of images from files and of the message title.
std::span<const Scenario> PipelineScenarios();

inline std::ostream& operator<<(std::ostream& out, const Scenario& scenario) { return out << scenario.name; }

} // namespace z3d::test
