// Options whose text is parsed by a function of Arguments.h or its like.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

#include "Failure.h"

namespace z3d::tools {

// `form` stands for the value in the help. A refusal by `parse` names the option. Given twice, the last counts.
template <class Target, class Parse>
CLI::Option* AddParsed(CLI::App& command, const std::string& names, Target& target, Parse parse,
                       const char* form, const std::string& help) {
    const auto take = [&target, parse, names](const std::string& text) {
        try {
            target = parse(text);
        } catch (const BadArgument& refusal) {
            throw CLI::ValidationError(names, refusal.what());
        }
    };
    return command.add_option_function<std::string>(names, take, help)->type_name(form)->take_last();
}

} // namespace z3d::tools
