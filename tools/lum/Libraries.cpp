// The only source that includes CLI11 and nlohmann-json: each takes seconds to compile, so the rest of the tool uses
// them through Command.h and Json.h.

#include <lumcommon/lumcommon.h>
#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <numeric>
#include <utility>

#include "Command.h"
#include "Json.h"
#include "Output.h"
#include "Pages.h"

namespace LumTool {
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

/// How many letters must be put in, left out or changed to make one word of the other.
std::size_t distanceOf(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);  // from the part of `a` so far to each beginning of `b`
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t changed = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({row[j] + 1, row[j + 1] + 1, changed});
        }
    }
    return row.back();
}

/// Refuses a word that stands where a command must, and is none.   Failure: UsageError, which offers the nearest one.
void checkCommands(int argc, char** argv, const std::vector<Command>& commands) {
    const std::vector<Command>* known = &commands;
    std::string group;
    for (int i = 1; i < argc && !known->empty(); ++i) {
        const std::string word = argv[i];
        if (word == "--generate") ++i;  // what follows it is no command
        if (word.starts_with('-')) continue;
        const auto distance = [&](const Command& command) { return distanceOf(word, command.name); };
        const Command& nearest = *std::ranges::min_element(*known, {}, distance);
        if (nearest.name != word) {
            const bool isNear = 2 * distance(nearest) <= nearest.name.size() + 1;
            std::string message = "there is no command \"" + group + word + "\"";
            if (isNear) {
                message += "; did you mean \"" + group + nearest.name + "\"?";
            } else if (!group.empty()) {
                for (const char* before = ", but "; const Command& other : *known) {
                    message += std::exchange(before, " and ") + group + other.name;
                }
            }
            throw UsageError(message);
        }
        known = &nearest.commands;
        group += word + " ";
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
    const std::map<std::string, std::string (*)(const CommandPage&)> writers{
        {"man", toManualPage}, {"bash", toBashCompletion}, {"zsh", toZshCompletion}};
    std::string wanted;
    const auto choose = [&wanted](const std::string& kind) {
        wanted = kind;
        throw CLI::Success();
    };
    app.add_option_function<std::string>("--generate", choose, "Write the manual page, or the completions of a shell")
        ->check(CLI::IsMember({"man", "bash", "zsh"}));
    const int version = LumCommon::getLibVersion();  // of the library that is loaded: 309 is 3.9
    app.set_version_flag("--version", "lum " + std::to_string(version / 100) + "." + std::to_string(version % 100));
    const Command* chosen = nullptr;
    addCommands(app, commands, chosen);
    try {
        checkCommands(argc, argv, commands);
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

}  // namespace LumTool
