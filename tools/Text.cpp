#include "Text.h"

#include <windows.h>

#include <cstdarg>
#include <cstdio>

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

std::filesystem::path PathOf(std::string_view text) { return Wide(text); }

std::string Shown(const std::filesystem::path& path) { return Narrow(path.native()); }

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    for (char& letter : lower)
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    return lower;
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    for (;;) {
        const size_t end = text.find(separator);
        pieces.push_back(text.substr(0, end));
        if (end == std::string_view::npos) return pieces;
        text.remove_prefix(end + 1);
    }
}

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view kBlank = " \t\r\n";
    const size_t first = text.find_first_not_of(kBlank);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

std::string Format(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    va_list again;
    va_copy(again, arguments);
    std::string text(static_cast<size_t>(std::vsnprintf(nullptr, 0, format, arguments)), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    va_end(arguments);
    return text;
}

} // namespace z3d::tools
