// One source per command: each adds its name, options and help to the program, and what runs when it is given.
#pragma once

namespace CLI {
class App;
}

namespace z3d::tools {

void AddProjectCommand(CLI::App& program);
void AddConvertCommand(CLI::App& program);
void AddColourCommand(CLI::App& program);
void AddPhantomCommand(CLI::App& program);
void AddAnglesCommand(CLI::App& program);

} // namespace z3d::tools
