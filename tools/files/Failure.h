// Why a file could not be read or written: one sentence for the user.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

namespace z3d::files {

class FileFailure : public std::runtime_error {
public:
    explicit FileFailure(const std::string& sentence) : std::runtime_error(sentence) {}
};

// The caller's progress function asked to stop.
class Cancelled : public std::runtime_error {
public:
    Cancelled() : std::runtime_error("interrupted") {}
};

// Throws a FileFailure that says why the file cannot be used.
[[noreturn]] void Refuse(const std::filesystem::path& path, const std::string& reason);

} // namespace z3d::files
