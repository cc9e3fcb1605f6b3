// Text is UTF-8 inside the tools and UTF-16 at the border to Windows.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "files/Text.h"

namespace z3d::tools {

using files::Format;
using files::Grouped;
using files::LowerCase;
using files::Shown;
using files::Split;
using files::Trimmed;

std::wstring Wide(std::string_view text);
std::string Narrow(std::wstring_view text);

// In the system's 8-bit code page; nothing when a letter is missing there.
std::optional<std::string> InCodePage(std::wstring_view text);

// Fails with a BadArgument for an empty name, or one that no file can have.
std::filesystem::path PathOf(std::string_view text);

} // namespace z3d::tools
