// The only source that includes CLI11 and nlohmann-json: each takes seconds to compile, so the rest of the tool uses
// them through Command.h and Json.h.

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "Command.h"
#include "Json.h"
#include "Output.h"
#include "Pages.h"

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

CommandPage::Argument takeApart(const CLI::Option& option) {
    CommandPage::Argument argument;
    if (option.get_positional()) {
        argument.names.push_back(option.get_name(true));
    } else {
        for (const std::string& name : option.get_snames()) argument.names.push_back('-' + name);
        for (const std::string& name : option.get_lnames()) argument.names.push_back("--" + name);
    }
    argument.help = option.get_description();
    argument.isRequired = option.get_required();
    argument.isRepeated = option.get_expected_max() > 1;
    if (option.get_type_size_max() == 0) return argument;
    // "TEXT", or "TEXT:{one,two}" when there is a choice, or "INT:INT in [0 - 7]".
    argument.type = option.get_type_name();
    const std::size_t colon = std::min(argument.type.find(':'), argument.type.size());
    if (argument.type.substr(colon).starts_with(":{") && argument.type.ends_with('}')) {
        argument.choices = CLI::detail::split(argument.type.substr(colon + 2, argument.type.size() - colon - 3), ',');
    }
    argument.type.resize(colon);
    return argument;
}

/// The pages are made from what the library that parses arguments was told, not from a copy of it.
CommandPage takeApart(const CLI::App& app) {
    CommandPage page{app.get_name(), app.get_description(), app.get_footer(), {}, {}, {}};
    for (const CLI::Option* const option : app.get_options()) {
        (option->get_positional() ? page.positionals : page.options).push_back(takeApart(*option));
    }
    for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; })) {
        page.commands.push_back(takeApart(*command));
    }
    return page;
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
    const std::map<std::string, std::string (*)(const CommandPage&)> writers{
        {"man", toManualPage}, {"bash", toBashCompletion}, {"zsh", toZshCompletion}};
    std::string wanted;
    const auto choose = [&wanted](const std::string& kind) {
        wanted = kind;
        throw CLI::Success();
    };
    app.add_option_function<std::string>("--generate", choose, "Write the manual page, or the completions of a shell")
        ->check(CLI::IsMember({"man", "bash", "zsh"}));
    const Command* chosen = nullptr;
    addCommands(app, commands, chosen);
    try {
        app.parse(argc, argv);
        chosen->run();
        return true;
    } catch (const CLI::Error& error) {
        if (const auto writer = writers.find(wanted); writer != writers.end()) {
            print(writer->second(takeApart(app)));
            return true;
        }
        if (app.exit(error) == 0) return false;  // a request for help ends up here too
        throw UsageError(error.what());
    } catch (const UsageError& error) {
        app.exit(CLI::Error("UsageError", error.what()));
        throw;
    }
}

}  // namespace lum
