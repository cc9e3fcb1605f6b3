// Text is UTF-8 inside the tool and UTF-16 at the border to Windows.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace z3d::tools {

std::wstring Wide(std::string_view text);
std::string Narrow(std::wstring_view text);

// In the system's 8-bit code page; nothing when a letter is missing there.
std::optional<std::string> InCodePage(std::wstring_view text);

std::filesystem::path PathOf(std::string_view text);

// A path as the user would type it, for messages.
std::string Shown(const std::filesystem::path& path);

// ASCII letters only: for extensions and key words.
std::string LowerCase(std::string_view text);

// The pieces between separators: always one more than there are separators.
std::vector<std::string_view> Split(std::string_view text, char separator);

std::string_view Trimmed(std::string_view text);

// A string from a printf format.
[[gnu::format(gnu_printf, 1, 2)]] std::string Format(const char* format, ...);

} // namespace z3d::tools
