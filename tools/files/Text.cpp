#include "Text.h"

#include <algorithm>
#include <charconv>
#include <cstdarg>
#include <cstdio>

namespace z3d::files {

namespace {

constexpr std::string_view kBlank = " \t\r\n";

template <class Number>
std::optional<Number> Parsed(std::string_view text) {
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

} // namespace

std::string Shown(const std::filesystem::path& path) {
    try {
        const std::u8string text = path.u8string();
        return {text.begin(), text.end()};
    } catch (const std::exception&) {
        std::string text;
        for (const auto letter : path.native())
            text += (letter & ~0x7F) == 0 ? static_cast<char>(letter) : '?';
        return text;
    }
}

std::optional<std::filesystem::path> PathOf(std::string_view text) {
    const auto isControl = [](char letter) { return static_cast<unsigned char>(letter) < ' '; };
    if (text.empty() || std::ranges::any_of(text, isControl)) return std::nullopt;
    try {
        std::filesystem::path path(std::u8string(text.begin(), text.end()));
        path.u16string(); // fails for what is no UTF-8, also where paths are made of bytes
        return path;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    for (char& letter : lower)
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    return lower;
}

std::string ExtensionOf(const std::filesystem::path& path) {
    const std::string last = LowerCase(Shown(path.extension()));
    if (last != ".gz") return last;
    return LowerCase(Shown(path.stem().extension())) + last;
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

std::vector<std::string_view> Words(std::string_view text) {
    std::vector<std::string_view> words;
    for (;;) {
        const size_t first = text.find_first_not_of(kBlank);
        if (first == std::string_view::npos) return words;
        text.remove_prefix(first);
        const size_t length = std::min(text.find_first_of(kBlank), text.size());
        words.push_back(text.substr(0, length));
        text.remove_prefix(length);
    }
}

std::string_view Trimmed(std::string_view text) {
    const size_t first = text.find_first_not_of(kBlank);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

std::optional<double> ToDouble(std::string_view text) { return Parsed<double>(text); }

std::optional<int64_t> ToWhole(std::string_view text) { return Parsed<int64_t>(text); }

std::string Grouped(uint64_t number) {
    const std::string digits = std::to_string(number);
    std::string grouped;
    for (size_t i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0) grouped += ',';
        grouped += digits[i];
    }
    return grouped;
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

} // namespace z3d::files
