// A host that works for weeks: a million calls of every export, then two hundred loads and unloads. Fails when the
// process holds more afterwards than after the first tenth.
// Usage: soak [calls [cycles]]
#include "soak/Calls.h"
#include "soak/Usage.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

using namespace z3d::soak;

std::string Folder() {
    char program[MAX_PATH];
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    const std::string path(program);
    return path.substr(0, path.rfind('\\') + 1);
}

bool SoakCalls(long calls) {
    Calls host(Folder(), 1);
    long done = 0;
    Usage warm = {};
    for (int tenth = 1; tenth <= 10; ++tenth) {
        while (done < calls / 10 * tenth)
            done += host.Next();
        const Usage usage = MeasureUsage();
        if (tenth == 1) warm = usage;
        Print((std::to_string(done) + " calls").c_str(), usage);
        if (tenth == 10) return IsFlat(warm, usage);
    }
    return false;
}

// One life of the library in a process: loaded, used, unloaded.
bool LoadOnce(const std::string& dll) {
    const HMODULE module = LoadLibraryA(dll.c_str());
    if (module == nullptr) return false;
    using SetTitle = const char*(__stdcall*)(const char*);
    const auto setTitle =
        reinterpret_cast<SetTitle>(reinterpret_cast<void*>(GetProcAddress(module, "SetRenderMsgTitle")));
    return setTitle != nullptr && setTitle("soak") != nullptr && FreeLibrary(module) != FALSE;
}

bool SoakLoads(int cycles) {
    const std::string copy = Folder() + "soak-copy.dll";
    CopyFileA((Folder() + "Zentra3DRendering.dll").c_str(), copy.c_str(), FALSE);
    bool works = true;
    for (int cycle = 0; cycle < cycles / 10; ++cycle)
        works = works && LoadOnce(copy);
    const Usage warm = MeasureUsage();
    Print("warm", warm);
    for (int cycle = cycles / 10; cycle < cycles; ++cycle)
        works = works && LoadOnce(copy);
    const Usage usage = MeasureUsage();
    Print((std::to_string(cycles) + " loads").c_str(), usage);
    const bool isGone = GetModuleHandleA(copy.c_str()) == nullptr;
    DeleteFileA(copy.c_str());
    return works && isGone && IsFlat(warm, usage);
}

bool Report(const char* what, bool isAsExpected) {
    std::printf("%s: %s\n", what, isAsExpected ? "as expected" : "NOT as expected");
    std::fflush(stdout);
    return isAsExpected;
}

} // namespace

int main(int count, char** arguments) {
    const long calls = count > 1 ? std::atol(arguments[1]) : 1000000;
    const int cycles = count > 2 ? std::atoi(arguments[2]) : 200;
    if (!Report("measures see leaks", UsageSeesLeaks())) return EXIT_FAILURE;
    const bool callsAreFlat = Report("nothing grows with calls", SoakCalls(calls));
    const bool loadsAreFlat = Report("nothing grows with loads", SoakLoads(cycles));
    return callsAreFlat && loadsAreFlat ? EXIT_SUCCESS : EXIT_FAILURE;
}
