#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace lum {

/// What a command takes. Each call names one argument and the variable that receives it; the variable's value
/// beforehand is the default. Positional arguments come in the order of their calls.
class Syntax {
public:
    virtual ~Syntax() = default;

    virtual void flag(const char* name, bool& value, const char* help) = 0;
    virtual void option(const char* name, std::string& value, const char* help) = 0;
    virtual void option(const char* name, int& value, const char* help) = 0;
    /// An option that may be repeated; its numbers lie in `least` to `most`.
    virtual void option(const char* name, std::vector<int>& values, int least, int most, const char* help) = 0;
    virtual void required(const char* name, std::string& value, const char* help) = 0;
    /// A positional argument that is one of `choices`.
    virtual void required(const char* name, std::string& value, const std::vector<std::string>& choices,
                          const char* help) = 0;
    /// One or more positional arguments.
    virtual void required(const char* name, std::vector<std::string>& values, const char* help) = 0;
    virtual void optional(const char* name, std::string& value, const char* help) = 0;
    /// What help says below the arguments.
    virtual void footer(const char* text) = 0;
};

/// A command of the tool: either `describe` and `run`, or a group of commands.
struct Command {
    std::string name, summary;
    std::function<void(Syntax&)> describe;
    /// Failure: a LumError, or a UsageError for arguments that do not fit together.
    std::function<void()> run;
    std::vector<Command> commands;
};

/// A command without arguments.
inline Command makeCommand(const char* name, const char* summary, void (*run)()) {
    return {name, summary, [](Syntax&) {}, run, {}};
}

/// A command with one positional argument.
inline Command makeCommand(const char* name, const char* summary, const char* argument, const char* help,
                           void (*run)(const std::string& value)) {
    const auto value = std::make_shared<std::string>();
    return {name,
            summary,
            [value, argument, help](Syntax& syntax) { syntax.required(argument, *value, help); },
            [value, run] { run(*value); },
            {}};
}

/// A command whose arguments are kept in an Arguments: `describe` names them, `run` does the work.
template <class Arguments>
Command makeCommand(const char* name, const char* summary, void (*describe)(Syntax&, Arguments&),
                    void (*run)(const Arguments&)) {
    const auto arguments = std::make_shared<Arguments>();
    return {name,
            summary,
            [arguments, describe](Syntax& syntax) { describe(syntax, *arguments); },
            [arguments, run] { run(*arguments); },
            {}};
}

/// Arguments that are each right and do not fit together.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads the command line and runs the command that it names.
/// @return  whether there was something to run: false when help was asked for and has been printed.
/// Failure: what the command throws. Bad usage is reported on standard error, then thrown as UsageError.
bool runCommandLine(int argc, char** argv, const std::vector<Command>& commands);

}  // namespace lum
