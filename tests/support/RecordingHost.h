// A host that writes down everything it is told and can cancel at any call.
#pragma once

#include "frame/Host.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

namespace z3d::test {

// One call of the progress callback, or one warning.
struct HostEvent {
    std::int32_t code = 0;
    std::uint32_t valueBits = 0;
    std::string warning; // the other fields are 0 then

    bool operator==(const HostEvent&) const = default;
};

HostEvent Start();
HostEvent Percent(float percent);
HostEvent NoResult();
HostEvent CannotRun();
HostEvent Warning(const char* text);

void PrintTo(const HostEvent& event, std::ostream* out);

using Transcript = std::vector<HostEvent>;

class RecordingHost {
public:
    static constexpr int kNever = std::numeric_limits<int>::max();

    // Answers `cancelResult` to the callback call of this index (from 0), and 0 to every other.
    explicit RecordingHost(int cancelAt = kNever, std::int32_t cancelResult = 200)
        : cancelAt_(cancelAt), cancelResult_(cancelResult) {}

    frame::Host Get();
    // The same without a callback: only warnings arrive.
    frame::Host WithoutCallback();

    const Transcript& Events() const { return events_; }
    int Calls() const { return calls_; }

    // Called at each event, before the answer.
    std::function<void()> atEachEvent;

private:
    static std::int32_t Report(void* context, std::int32_t code, std::uint32_t value);
    static void Warn(void* context, const char* text);
    void Record(HostEvent event);

    int cancelAt_;
    std::int32_t cancelResult_;
    int calls_ = 0;
    Transcript events_;
};

} // namespace z3d::test
