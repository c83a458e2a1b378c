#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace LumTool {

/// Declares the arguments of a command. Each call names one argument and the variable that receives it; the variable's
/// initial value is the default. Positional arguments come in the order of the calls.
class Syntax {
public:
    virtual ~Syntax() = default;

    virtual void flag(const char* name, bool& value, const char* help) = 0;
    virtual void option(const char* name, std::string& value, const char* help) = 0;
    virtual void option(const char* name, int& value, const char* help) = 0;
    /// An option that may be repeated.
    virtual void option(const char* name, std::vector<std::string>& values, const char* help) = 0;
    virtual void required(const char* name, std::string& value, const char* help) = 0;
    /// A positional argument that must be one of `choices`.
    virtual void required(const char* name, std::string& value, const std::vector<std::string>& choices,
                          const char* help) = 0;
    /// One or more positional arguments.
    virtual void required(const char* name, std::vector<std::string>& values, const char* help) = 0;
    virtual void optional(const char* name, std::string& value, const char* help) = 0;
    /// Text that help prints below the arguments.
    virtual void footer(const char* text) = 0;
};

/// A command of the tool: either one with `describe` and `run`, or a group of commands.
struct Command {
    std::string name, summary;
    std::function<void(Syntax&)> describe;
    /// Failure: throws a LumError, or a UsageError for arguments that do not fit together.
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

/// What the command line says for all commands.
struct CommonOptions {
    bool isUntrusted = false;  ///< documents are read by LumXmlParser::setUntrusted()
};
CommonOptions& commonOptions();

/// Thrown for arguments that cannot be used, or not in this combination.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Parses the command line and runs the command that it names.
/// @return  whether something was written to standard output: false if help was requested and has been printed.
/// Failure: whatever the command throws. Bad usage is reported on standard error, then thrown as UsageError.
bool runCommandLine(int argc, char** argv, const std::vector<Command>& commands);

}  // namespace LumTool
