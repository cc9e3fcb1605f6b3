#include "Text.h"

#include <windows.h>

#include "Failure.h"

namespace z3d::tools {

namespace {

std::wstring Decoded(std::string_view text, UINT codePage) {
    const int bytes = static_cast<int>(text.size());
    std::wstring wide(static_cast<size_t>(MultiByteToWideChar(codePage, 0, text.data(), bytes, nullptr, 0)),
                      L'\0');
    MultiByteToWideChar(codePage, 0, text.data(), bytes, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

std::string Encoded(std::wstring_view text, UINT codePage) {
    const int units = static_cast<int>(text.size());
    std::string narrow(static_cast<size_t>(WideCharToMultiByte(codePage, 0, text.data(), units, nullptr, 0,
                                                               nullptr, nullptr)),
                       '\0');
    WideCharToMultiByte(codePage, 0, text.data(), units, narrow.data(), static_cast<int>(narrow.size()),
                        nullptr, nullptr);
    return narrow;
}

} // namespace

std::wstring Wide(std::string_view text) { return Decoded(text, CP_UTF8); }

std::string Narrow(std::wstring_view text) { return Encoded(text, CP_UTF8); }

std::optional<std::string> InCodePage(std::wstring_view text) {
    // Missing letters become similar ones or question marks: only the way back shows it on every code page.
    std::string encoded = Encoded(text, CP_ACP);
    if (Decoded(encoded, CP_ACP) != text) return std::nullopt;
    return encoded;
}

std::filesystem::path PathOf(std::string_view text) {
    if (text.empty()) throw BadArgument("a file name is empty");
    const std::optional<std::filesystem::path> path = files::PathOf(text);
    if (!path) throw BadArgument("'" + std::string(text) + "' cannot name a file");
    return *path;
}

} // namespace z3d::tools
