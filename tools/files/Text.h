// Text is UTF-8 inside the tools, whatever the system's paths are made of.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace z3d::files {

// A path as the user would type it, for messages. Letters that UTF-8 cannot hold become question marks.
std::string Shown(const std::filesystem::path& path);

// Nothing for text that cannot name a file: it is empty, no UTF-8, or has control characters.
std::optional<std::filesystem::path> PathOf(std::string_view text);

// ASCII letters only: for extensions and key words.
std::string LowerCase(std::string_view text);

// The name's extension in lower case with its dot; ".nii.gz" is one.
std::string ExtensionOf(const std::filesystem::path& path);

// The pieces between separators: always one more than there are separators.
std::vector<std::string_view> Split(std::string_view text, char separator);

// The pieces between runs of blanks.
std::vector<std::string_view> Words(std::string_view text);

std::string_view Trimmed(std::string_view text);

// The whole text as a number, or nothing.
std::optional<double> ToDouble(std::string_view text);
std::optional<int64_t> ToWhole(std::string_view text);

// 1234567 as "1,234,567"
std::string Grouped(uint64_t number);

// A string from a printf format.
#if defined(__clang__) || !defined(_WIN32)
[[gnu::format(printf, 1, 2)]]
#else
[[gnu::format(gnu_printf, 1, 2)]]
#endif
std::string
Format(const char* format, ...);

} // namespace z3d::files
