#include "PngSlices.h"

#include <algorithm>

#include "Failure.h"
#include "Text.h"

namespace z3d::files {

namespace {

bool IsDigit(char letter) { return letter >= '0' && letter <= '9'; }

// The digits at the front, without zeros before them, taken off the text.
std::string_view TakeNumber(std::string_view& text) {
    const auto length = static_cast<size_t>(std::ranges::find_if_not(text, IsDigit) - text.begin());
    std::string_view digits = text.substr(0, length);
    text.remove_prefix(length);
    while (digits.size() > 1 && digits.front() == '0')
        digits.remove_prefix(1);
    return digits;
}

bool ComesBefore(std::string_view a, std::string_view b) {
    while (!a.empty() && !b.empty()) {
        if (IsDigit(a.front()) && IsDigit(b.front())) {
            const std::string_view numberA = TakeNumber(a);
            const std::string_view numberB = TakeNumber(b);
            if (numberA.size() != numberB.size()) return numberA.size() < numberB.size();
            if (numberA != numberB) return numberA < numberB;
            continue;
        }
        if (a.front() != b.front()) return a.front() < b.front();
        a.remove_prefix(1);
        b.remove_prefix(1);
    }
    return a.size() < b.size();
}

// * stands for any letters, ? for one. A star first takes nothing, then ever more.
bool Matches(std::string_view name, std::string_view pattern) {
    size_t at = 0, in = 0, star = std::string_view::npos, taken = 0;
    while (at < name.size()) {
        if (in < pattern.size() && pattern[in] == '*') {
            star = in++;
            taken = at;
        } else if (in < pattern.size() && (pattern[in] == '?' || pattern[in] == name[at])) {
            ++in;
            ++at;
        } else if (star != std::string_view::npos) {
            in = star + 1;
            at = ++taken;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', in) == std::string_view::npos;
}

std::vector<std::filesystem::path> Matching(const std::filesystem::path& folder, const std::string& pattern,
                                            const FileSystem& files) {
    struct Named {
        std::string name;
        std::filesystem::path path;
    };
    std::vector<Named> found;
    for (const std::filesystem::path& path : files.FilesIn(folder.empty() ? "." : folder))
        if (const std::string name = LowerCase(Shown(path.filename())); Matches(name, LowerCase(pattern)))
            found.push_back({name, folder / path.filename()});
    std::ranges::sort(found, [](const Named& a, const Named& b) {
        // Names that differ in zeros before a number alone still have one order.
        if (ComesBefore(a.name, b.name) != ComesBefore(b.name, a.name)) return ComesBefore(a.name, b.name);
        return a.path < b.path;
    });
    std::vector<std::filesystem::path> paths;
    for (const Named& slice : found)
        paths.push_back(slice.path);
    return paths;
}

} // namespace

std::vector<std::filesystem::path> SlicesIn(const std::filesystem::path& folder, const FileSystem& files) {
    std::vector<std::filesystem::path> slices = Matching(folder, "*.png", files);
    if (slices.empty()) Refuse(folder, "the folder has no .png files");
    return slices;
}

std::vector<std::filesystem::path> SlicesOf(const std::filesystem::path& pattern, const FileSystem& files) {
    std::vector<std::filesystem::path> slices =
        Matching(pattern.parent_path(), Shown(pattern.filename()), files);
    if (slices.empty()) throw FileFailure("cannot open " + Shown(pattern) + ": no file is named so");
    return slices;
}

} // namespace z3d::files
