// zentra-view: looks at volumes.
#include <windows.h>

#include <commctrl.h>
#include <shellapi.h>

#include "MainWindow.h"

using namespace z3d::viewer;

namespace {

// The files of one volume.
Source SourceOfCommandLine() {
    Source source;
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int i = 1; i < count; ++i)
        source.paths.emplace_back(std::filesystem::absolute(words[i]));
    LocalFree(words);
    return source;
}

} // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int how) {
    try {
        const INITCOMMONCONTROLSEX controls = {sizeof controls,
                                               ICC_STANDARD_CLASSES | ICC_BAR_CLASSES | ICC_PROGRESS_CLASS};
        InitCommonControlsEx(&controls);
        MainWindow window;
        window.Appear(how);
        window.Open(SourceOfCommandLine());
        window.Run();
        // The window is gone and nothing is being written. A picture or a file that is still being worked on must
        // not keep the process.
        TerminateProcess(GetCurrentProcess(), 0);
    } catch (const std::exception& problem) {
        Warn(nullptr, problem.what());
    }
    return 1;
}
