// Questions to the user, and sentences for him.
#pragma once

#include <windows.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace z3d::viewer {

// Files of one volume; none when the user thinks better of it.
std::vector<std::filesystem::path> AskForVolume(HWND owner);

enum class SaveKind { Picture, Values };
std::optional<std::filesystem::path> AskWhereToSave(HWND owner, SaveKind kind,
                                                    const std::filesystem::path& proposal);

void Warn(HWND owner, const std::string& sentence);
void Inform(HWND owner, const std::string& title, const std::string& text);

} // namespace z3d::viewer
