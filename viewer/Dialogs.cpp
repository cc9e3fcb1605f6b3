#include "Dialogs.h"

#include <commdlg.h>

#include "Text.h"

namespace z3d::viewer {

namespace {

constexpr size_t kLongestAnswer = 32768;

OPENFILENAMEW DialogOf(HWND owner, std::wstring& answer, const wchar_t* filter) {
    answer.resize(kLongestAnswer, L'\0');
    OPENFILENAMEW dialog = {};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = owner;
    dialog.lpstrFilter = filter;
    dialog.lpstrFile = answer.data();
    dialog.nMaxFile = static_cast<DWORD>(answer.size());
    return dialog;
}

// One name, or a folder and names in it, each ended by a zero and all by another.
std::vector<std::filesystem::path> PathsIn(const std::wstring& answer) {
    std::vector<std::filesystem::path> pieces;
    for (size_t at = 0; at < answer.size() && answer[at] != L'\0';) {
        pieces.emplace_back(answer.c_str() + at);
        at += pieces.back().native().size() + 1;
    }
    if (pieces.size() < 2) return pieces;
    for (size_t i = 1; i < pieces.size(); ++i)
        pieces[i] = pieces[0] / pieces[i];
    pieces.erase(pieces.begin());
    return pieces;
}

} // namespace

std::vector<std::filesystem::path> AskForVolume(HWND owner) {
    std::wstring answer;
    OPENFILENAMEW dialog =
        DialogOf(owner, answer,
                 L"Volumes (NIfTI, NRRD, PNG slices)\0*.nii;*.nii.gz;*.hdr;*.img;*.nrrd;*.nhdr;*.png\0"
                 L"All files\0*.*\0");
    dialog.lpstrTitle = L"Open a volume";
    dialog.Flags =
        OFN_EXPLORER | OFN_FILEMUSTEXIST | OFN_ALLOWMULTISELECT | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    if (GetOpenFileNameW(&dialog) == 0) return {};
    return PathsIn(answer);
}

std::optional<std::filesystem::path> AskWhereToSave(HWND owner, SaveKind kind,
                                                    const std::filesystem::path& proposal) {
    const bool picture = kind == SaveKind::Picture;
    std::wstring answer = proposal.native();
    OPENFILENAMEW dialog =
        DialogOf(owner, answer, picture ? L"PNG picture\0*.png\0" : L"Values as NRRD\0*.nhdr\0");
    dialog.lpstrTitle = picture ? L"Save the picture" : L"Save the values";
    dialog.lpstrDefExt = picture ? L"png" : L"nhdr";
    dialog.Flags =
        OFN_EXPLORER | OFN_OVERWRITEPROMPT | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    if (GetSaveFileNameW(&dialog) == 0) return std::nullopt;
    return std::filesystem::path(answer.c_str());
}

void Warn(HWND owner, const std::string& sentence) {
    MessageBoxW(owner, tools::Wide(sentence).c_str(), L"Zentra view", MB_OK | MB_ICONWARNING);
}

void Inform(HWND owner, const std::string& title, const std::string& text) {
    MessageBoxW(owner, tools::Wide(text).c_str(), tools::Wide(title).c_str(), MB_OK);
}

} // namespace z3d::viewer
