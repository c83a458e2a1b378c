#pragma once

#include <lumcommon/core/Text.h>

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>

namespace lum {

/// What the command line asks for; it runs when the whole line has been understood.
using Action = std::function<void()>;

/// Adds a subcommand whose arguments are kept in an Arguments: `describe` names them, `run` does the work.
/// Failure of `run`: a LumError, or a UsageError for arguments that do not fit together.
template <class Arguments>
void addCommand(CLI::App& app, Action& action, const char* name, const char* summary,
                void (*describe)(CLI::App&, Arguments&), void (*run)(const Arguments&)) {
    CLI::App* const command = app.add_subcommand(name, summary);
    const auto arguments = std::make_shared<Arguments>();
    describe(*command, *arguments);
    command->callback([arguments, run, &action] { action = [arguments, run] { run(*arguments); }; });
}

/// Arguments that are each right and do not fit together.
class UsageError : public CLI::Error {
public:
    explicit UsageError(const std::string& message) : CLI::Error("UsageError", message) {}
};

}  // namespace lum
