#pragma once

#include <string>
#include <vector>

namespace LumTool {

/// What the help of a command says, taken apart: pages that are made from it cannot promise anything else.
struct CommandPage {
    struct Argument {
        std::vector<std::string> names;  ///< an option's with their hyphens; a positional argument has one
        std::string type;                ///< of the value; empty for a flag
        std::vector<std::string> choices;
        std::string help;
        bool isRequired = false;
        bool isRepeated = false;
    };
    std::string name, summary, footer;
    std::vector<Argument> options, positionals;
    std::vector<CommandPage> commands;
};

/// A manual page in the macros of man(7).
std::string toManualPage(const CommandPage& tool);
/// Completions of the two shells, to be put where they look for them.
std::string toBashCompletion(const CommandPage& tool);
std::string toZshCompletion(const CommandPage& tool);

}  // namespace LumTool
