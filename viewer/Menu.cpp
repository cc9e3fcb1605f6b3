#include "Menu.h"

#include <iterator>
#include <string>

#include "Commands.h"
#include "Names.h"

namespace z3d::viewer {

namespace {

UINT NumberOf(Command command) { return static_cast<UINT>(command); }

// Later `AppendMenu` for one popup after the other.
class Popup {
public:
    Popup(HMENU bar, const wchar_t* title) : menu_(CreatePopupMenu()) {
        AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(menu_), title);
    }
    Popup& Add(Command command, const std::wstring& text) {
        AppendMenuW(menu_, MF_STRING, NumberOf(command), text.c_str());
        return *this;
    }
    Popup& Line() {
        AppendMenuW(menu_, MF_SEPARATOR, 0, nullptr);
        return *this;
    }

private:
    HMENU menu_;
};

void AddFile(HMENU bar) {
    Popup(bar, L"&File")
        .Add(Command::Open, L"&Open...\tCtrl+O")
        .Add(Command::ShowPhantom, L"Made-up &head")
        .Line()
        .Add(Command::SavePicture, L"&Save picture...\tCtrl+S")
        .Add(Command::SaveValues, L"Save &values...\tCtrl+Shift+S")
        .Line()
        .Add(Command::Exit, L"E&xit\tAlt+F4");
    Popup(bar, L"&Edit")
        .Add(Command::CopyPicture, L"&Copy picture\tCtrl+C")
        .Add(Command::CopyCommand, L"Copy command &line\tCtrl+Shift+C");
}

void AddView(HMENU bar) {
    constexpr const wchar_t* kKeys[kSideCount] = {L"F", L"B", L"L", L"R", L"T", L"U"};
    Popup view(bar, L"&View");
    for (size_t i = 0; i < kSideCount; ++i)
        view.Add(Nth(Command::LookFrom, i), std::wstring(kSideTitles[i]) + L"\t" + kKeys[i]);
    view.Line()
        .Add(Command::Spin, L"&Spin\tS")
        .Add(Command::Larger, L"&Larger\t+")
        .Add(Command::Smaller, L"S&maller\t-")
        .Add(Command::Fit, L"Fit the &window\tZ")
        .Add(Command::Reset, L"&Reset\t0");
}

void AddModes(HMENU bar) {
    Popup modes(bar, L"&Mode");
    for (size_t i = 0; i < kModeCount; ++i)
        modes.Add(Nth(Command::Mode, i), std::wstring(kModeTitles[i]) + L"\t" + std::to_wstring(i + 1));
    Popup palettes(bar, L"&Palette");
    for (size_t i = 0; i < std::size(kPaletteTitles); ++i)
        palettes.Add(Nth(Command::Palette, i), kPaletteTitles[i]);
    palettes.Line().Add(Command::NextPalette, L"&Next\tP");
}

} // namespace

HMENU MakeMenu() {
    const HMENU bar = CreateMenu();
    AddFile(bar);
    AddView(bar);
    AddModes(bar);
    Popup(bar, L"&Help").Add(Command::ShowKeys, L"&Mouse and keys\tF1").Add(Command::About, L"&About");
    return bar;
}

void ShowInMenu(HMENU menu, const State& state) {
    CheckMenuRadioItem(menu, NumberOf(Command::Mode), NumberOf(Nth(Command::Mode, kModeCount - 1)),
                       NumberOf(Nth(Command::Mode, state.view.mode)), MF_BYCOMMAND);
    const auto palette = static_cast<size_t>(state.view.palette);
    const size_t last = std::size(kPaletteTitles) - 1;
    CheckMenuRadioItem(menu, NumberOf(Command::Palette), NumberOf(Nth(Command::Palette, last)),
                       NumberOf(Nth(Command::Palette, palette)), MF_BYCOMMAND);
    CheckMenuItem(menu, NumberOf(Command::Spin), state.spinning ? MF_CHECKED : MF_UNCHECKED);
    for (size_t i = 0; i <= last + 1; ++i) {
        const Command command = i <= last ? Nth(Command::Palette, i) : Command::NextPalette;
        EnableMenuItem(menu, NumberOf(command), state.view.Colour() ? MF_GRAYED : MF_ENABLED);
    }
}

} // namespace z3d::viewer
