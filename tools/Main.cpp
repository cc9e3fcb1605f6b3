// zentra: the library on the command line.
#include <CLI/CLI.hpp>

#include <windows.h>

#include <shellapi.h>

#include <new>
#include <sstream>

#include "Commands.h"
#include "Console.h"
#include "Failure.h"
#include "Interrupt.h"
#include "Text.h"
#include "Version.h"
#include "files/Failure.h"

using namespace z3d::tools;

namespace {

// The arguments of main() have been squeezed through a code page; these have not.
std::vector<std::string> CommandLineArguments() {
    int count = 0;
    wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int i = 0; i < count; ++i)
        arguments.push_back(Narrow(wide[i]));
    LocalFree(wide);
    return arguments;
}

void Describe(CLI::App& program) {
    program.name("zentra");
    program.description("Renders 3D image volumes from the command line.");
    program.footer("zentra COMMAND --help explains a command.\n"
                   "Exit codes: 0 done, 1 failed, 2 wrong arguments, 130 interrupted with Ctrl+C.");
    program.get_formatter()->column_width(32);
    program.set_version_flag("--version", VersionText);
    // A slash begins a path, not an option.
    program.allow_windows_style_options(false);
    AddProjectCommand(program);
    AddConvertCommand(program);
    AddColourCommand(program);
    AddPhantomCommand(program);
    AddAnglesCommand(program);
    program.require_subcommand(1);
}

void Parse(CLI::App& program, const std::vector<std::string>& arguments) {
    std::vector<const char*> pointers;
    for (const std::string& argument : arguments)
        pointers.push_back(argument.c_str());
    program.parse(static_cast<int>(pointers.size()), pointers.data());
}

int Fail(const std::string& sentence, int exitCode) {
    PrintError("zentra: " + sentence + "\n");
    return exitCode;
}

std::string CommandNames(CLI::App& program) {
    std::string names;
    for (const CLI::App* command : program.get_subcommands([](const CLI::App*) { return true; }))
        names += (names.empty() ? "" : ", ") + command->get_name();
    return names;
}

// The parser's own words, with the help of the command that was begun. Without a command they would not help.
std::string Sentence(CLI::App& program, const CLI::ParseError& error,
                     const std::vector<std::string>& arguments) {
    const std::vector<CLI::App*> begun = program.get_subcommands();
    if (!begun.empty()) return error.what() + (" (see zentra " + begun.front()->get_name() + " --help)");
    if (arguments.size() < 2) return "a command is wanted: " + CommandNames(program) + " (see zentra --help)";
    return "'" + arguments[1] + "' is none of the commands " + CommandNames(program) + " (see zentra --help)";
}

int Run(CLI::App& program) {
    const std::vector<std::string> arguments = CommandLineArguments();
    try {
        // A command runs at the end of the parse.
        Parse(program, arguments);
        return 0;
    } catch (const CLI::ParseError& error) {
        std::ostringstream text;
        if (program.exit(error, text, text) != 0)
            return Fail(Sentence(program, error, arguments), kExitBadArguments);
        PrintOut(text.str());
        return 0;
    }
}

} // namespace

int main() {
    try {
        WatchForInterrupt();
        CLI::App program;
        Describe(program);
        return Run(program);
    } catch (const Failure& failure) {
        return Fail(failure.what(), failure.ExitCode());
    } catch (const z3d::files::Cancelled& cancel) {
        return Fail(cancel.what(), kExitInterrupted);
    } catch (const std::bad_alloc&) {
        return Fail("not enough memory", kExitFailure);
    } catch (const std::exception& problem) {
        return Fail(problem.what(), kExitFailure);
    }
}
