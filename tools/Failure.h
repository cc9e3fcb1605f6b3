// What ends a command early: one sentence for the user, and the exit code that goes with it.
#pragma once

#include <stdexcept>
#include <string>

namespace z3d::tools {

inline constexpr int kExitFailure = 1;
inline constexpr int kExitBadArguments = 2;
inline constexpr int kExitInterrupted = 130;

class Failure : public std::runtime_error {
public:
    explicit Failure(const std::string& sentence, int exitCode = kExitFailure)
        : std::runtime_error(sentence), exitCode_(exitCode) {}
    int ExitCode() const { return exitCode_; }

private:
    int exitCode_;
};

// What the user typed cannot be right, whatever the files and the memory are like.
class BadArgument : public Failure {
public:
    explicit BadArgument(const std::string& sentence) : Failure(sentence, kExitBadArguments) {}
};

} // namespace z3d::tools
