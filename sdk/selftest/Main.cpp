// selftest.exe: checks the Zentra3DRendering.dll of this machine, one line per check.
// Exit code: 0 all is well, 1 a check failed, 2 the DLL could not be loaded or the arguments are wrong.
#include "sdk/selftest/Checks.h"
#include "sdk/selftest/Processor.h"

#include <shellapi.h>

#include <string_view>

using namespace z3d::sdk;

namespace {

constexpr int kFailed = 1;
constexpr int kNotLoaded = 2;

constexpr char kUsage[] =
    "usage: selftest [path of Zentra3DRendering.dll]\n"
    "Without a path the DLL beside this program is checked. Give the path of the copy that\n"
    "your program uses to check that one.\n";

} // namespace

int main() {
    int count = 0;
    wchar_t** arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    if (arguments == nullptr || count > 2
        || (count == 2 && std::wstring_view(arguments[1]).starts_with(L"-"))) {
        std::fputs(kUsage, stderr);
        return kNotLoaded;
    }
    const Library library(count == 2 ? arguments[1] : nullptr);
    if (!library.Loaded()) {
        std::printf("FAILED  %ls cannot be loaded: %s\n",
                    count == 2 ? arguments[1] : L"Zentra3DRendering.dll", library.Error().c_str());
        return kNotLoaded;
    }
    Report report;
    report.Note("processor", "%s, kernels for %s", ProcessorName().c_str(), KernelSet());
    report.Check(HasSse2(), "sse2", HasSse2() ? "the processor has it" : "the processor lacks it");
    CheckVersion(library, report);
    if (CheckExports(library, report)) {
        CheckPictures(library, report);
        CheckFiles(library, report);
    }
    std::printf("%d checks, %d failed\n", report.Checks(), report.Failures());
    return report.Failures() == 0 ? 0 : kFailed;
}
