// The only source that includes CLI11 and nlohmann-json: each takes seconds to compile, so the rest of the tool uses
// them through Command.h and Json.h.

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "Command.h"
#include "Json.h"

namespace lum {
namespace {

using nlohmann::ordered_json;

struct ToLibrary {
    template <class Scalar>
    ordered_json operator()(const Scalar& value) const {
        return value;
    }
    ordered_json operator()(const Json::Array& values) const {
        ordered_json array = ordered_json::array();
        for (const Json& value : values) array.push_back(std::visit(*this, value.get()));
        return array;
    }
    ordered_json operator()(const Json::Object& members) const {
        ordered_json object = ordered_json::object();
        for (const auto& [name, member] : members) object[name] = std::visit(*this, member.get());
        return object;
    }
};

class CliSyntax final : public Syntax {
public:
    explicit CliSyntax(CLI::App& app) : app_(app) {}

    void flag(const char* name, bool& value, const char* help) override { app_.add_flag(name, value, help); }
    void option(const char* name, std::string& value, const char* help) override { app_.add_option(name, value, help); }
    void option(const char* name, int& value, const char* help) override { app_.add_option(name, value, help); }
    void option(const char* name, std::vector<int>& values, int least, int most, const char* help) override {
        app_.add_option(name, values, help)->check(CLI::Range(least, most))->allow_extra_args(false)->type_name("N");
    }
    void option(const char* name, std::vector<std::string>& values, const char* help) override {
        app_.add_option(name, values, help)->allow_extra_args(false);
    }
    void required(const char* name, std::string& value, const char* help) override {
        app_.add_option(name, value, help)->required();
    }
    void required(const char* name, std::string& value, const std::vector<std::string>& choices,
                  const char* help) override {
        app_.add_option(name, value, help)->required()->check(CLI::IsMember(choices));
    }
    void required(const char* name, std::vector<std::string>& values, const char* help) override {
        app_.add_option(name, values, help)->required();
    }
    void optional(const char* name, std::string& value, const char* help) override {
        app_.add_option(name, value, help);
    }
    void footer(const char* text) override { app_.footer(text); }

private:
    CLI::App& app_;
};

/// Adds the commands to `app`; `chosen` is set to the one that the command line names.
void addCommands(CLI::App& app, const std::vector<Command>& commands, const Command*& chosen) {
    app.require_subcommand(1);
    for (const Command& command : commands) {
        CLI::App& added = *app.add_subcommand(command.name, command.summary);
        if (!command.run) {
            addCommands(added, command.commands, chosen);
            continue;
        }
        CliSyntax syntax(added);
        command.describe(syntax);
        added.callback([&command, &chosen] { chosen = &command; });
    }
}

}  // namespace

std::string Json::toString() const {
    return std::visit(ToLibrary(), value_).dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

CommonOptions& commonOptions() {
    static CommonOptions options;
    return options;
}

bool runCommandLine(int argc, char** argv, const std::vector<Command>& commands) {
    CLI::App app("Shows the LumCommon library at work. \"-\" means standard input; \"--\" ends the options.", "lum");
    app.fallthrough();  // what holds for all commands may also stand after the command
    app.add_flag("--untrusted", commonOptions().isUntrusted,
                 "XML documents come from strangers: open nothing that they name");
    const Command* chosen = nullptr;
    addCommands(app, commands, chosen);
    try {
        app.parse(argc, argv);
        chosen->run();
        return true;
    } catch (const CLI::Error& error) {
        if (app.exit(error) == 0) return false;  // a request for help ends up here too
        throw UsageError(error.what());
    } catch (const UsageError& error) {
        app.exit(CLI::Error("UsageError", error.what()));
        throw;
    }
}

}  // namespace lum
