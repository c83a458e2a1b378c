#include "Pages.h"

#include <lumcommon/core/LumVersion.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace LumTool {
namespace {

using Argument = CommandPage::Argument;

std::string join(const std::vector<std::string>& words, std::string_view separator) {
    std::string joined;
    for (const std::string& word : words) {
        if (!joined.empty()) joined += separator;
        joined += word;
    }
    return joined;
}

std::string replaceAll(std::string text, std::string_view from, std::string_view to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
        text.replace(at, from.size(), to);
    }
    return text;
}

std::string lowerCase(std::string text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return text;
}

/// The commands below `page` and itself, each with the words that lead to it.
struct Place {
    std::string path;
    const CommandPage* page;
};
void addPlaces(std::vector<Place>& places, const std::string& path, const CommandPage& page) {
    places.push_back({path, &page});
    for (const CommandPage& command : page.commands) addPlaces(places, path + ' ' + command.name, command);
}
std::vector<Place> allPlaces(const CommandPage& tool) {
    std::vector<Place> places;
    addPlaces(places, tool.name, tool);
    return places;
}

// ---- The manual page

std::string escapeRoff(std::string text) {
    text = replaceAll(std::move(text), "\\", "\\e");
    text = replaceAll(std::move(text), "-", "\\-");
    text = replaceAll(std::move(text), "\n", "\n.br\n");
    if (text.starts_with('.') || text.starts_with('\'')) text.insert(0, "\\&");
    return text;
}

std::string bold(const std::string& text) { return "\\fB" + escapeRoff(text) + "\\fR"; }
std::string italic(const std::string& text) { return "\\fI" + escapeRoff(text) + "\\fR"; }

std::string toRoff(const Argument& argument, bool isOption) {
    std::string text = ".TP\n";
    if (isOption) {
        for (std::size_t i = 0; i < argument.names.size(); ++i) text += (i ? ", " : "") + bold(argument.names[i]);
        if (!argument.type.empty()) text += ' ' + italic(argument.type);
    } else {
        text += italic(argument.names.front());
    }
    text += '\n' + escapeRoff(argument.help);
    if (!argument.choices.empty()) text += ": " + escapeRoff(join(argument.choices, ", "));
    return text + ".\n";
}

std::string toRoff(const CommandPage& page) {
    std::string text;
    for (const Argument& argument : page.positionals) text += toRoff(argument, false);
    for (const Argument& argument : page.options) {
        if (argument.names.back() != "--help") text += toRoff(argument, true);  // said once for all commands
    }
    if (!page.footer.empty()) text += ".PP\n" + escapeRoff(page.footer) + '\n';
    return text;
}

std::string toUsage(const Place& place) {
    std::string usage = escapeRoff(place.path);
    if (place.page->options.size() > 1) usage += " [options]";
    for (const Argument& argument : place.page->positionals) {
        const std::string shown = argument.names.front() + (argument.isRepeated ? "..." : "");
        usage += argument.isRequired ? ' ' + shown : " [" + shown + ']';
    }
    return usage;
}

// ---- Completions

/// Whether a value names a file, which the shell completes itself.
bool isFile(const Argument& argument) {
    constexpr std::array<std::string_view, 3> names{"file", "out", "uri"};
    return std::ranges::find(names, argument.names.front()) != names.end();
}

std::vector<std::string> optionNames(const std::vector<Argument>& options) {
    std::vector<std::string> names;
    for (const Argument& option : options) names.insert(names.end(), option.names.begin(), option.names.end());
    return names;
}

/// The options of the tool that may also stand after a command.
std::vector<Argument> commonOptionsOf(const CommandPage& tool) {
    std::vector<Argument> common;
    for (const Argument& option : tool.options) {
        if (option.type.empty() && option.names.back() != "--help") common.push_back(option);
    }
    return common;
}

std::string quoteShell(std::string text) { return '\'' + replaceAll(std::move(text), "'", "'\\''") + '\''; }

/// Text in an argument of the command _arguments of zsh.
std::string escapeZsh(std::string text) {
    for (const std::string_view special : {"\\", "[", "]", ":"}) {
        text = replaceAll(std::move(text), special, '\\' + std::string(special));
    }
    return text;
}

std::string toZshValue(const Argument& argument) {
    return ':' + escapeZsh(argument.names.back()) + ':' +
           (!argument.choices.empty() ? '(' + join(argument.choices, " ") + ')'
            : isFile(argument)        ? "_files"
                                      : " ");
}

std::string toZshArguments(const CommandPage& page, const CommandPage& tool) {
    std::vector<std::string> lines;
    const auto addOption = [&lines](const Argument& option) {
        for (const std::string& name : option.names) {
            lines.push_back(quoteShell((option.isRepeated ? "*" : "") + name + '[' + escapeZsh(option.help) + ']' +
                                       (option.type.empty() ? "" : toZshValue(option))));
        }
    };
    for (const Argument& option : page.options) addOption(option);
    if (&page != &tool) {
        for (const Argument& option : commonOptionsOf(tool)) addOption(option);
    }
    for (const Argument& argument : page.positionals) {
        const std::string place = argument.isRepeated ? "*" : argument.isRequired ? "" : ":";
        lines.push_back(quoteShell(place + toZshValue(argument)));
    }
    if (!page.commands.empty()) {
        lines.push_back("'1:command:->command'");
        lines.push_back("'*::argument:->argument'");
    }
    return "    _arguments -C \\\n        " + join(lines, " \\\n        ") + '\n';
}

std::string toZshFunction(const Place& place, const CommandPage& tool) {
    const std::string name = '_' + replaceAll(place.path, " ", "_");
    std::string text = name + "() {\n    local curcontext=\"$curcontext\" state line\n    local -a commands\n" +
                       toZshArguments(*place.page, tool);
    if (!place.page->commands.empty()) {
        text += "    case $state in\n    command)\n        commands=(\n";
        for (const CommandPage& command : place.page->commands) {
            text += "            " + quoteShell(command.name + ':' + escapeZsh(command.summary)) + '\n';
        }
        text +=
            "        )\n        _describe command commands\n        ;;\n"
            "    argument) (( $+functions[" +
            name + "_$words[1]] )) && " + name + "_$words[1] ;;\n    esac\n";
    }
    return text + "}\n\n";
}

}  // namespace

std::string toManualPage(const CommandPage& tool) {
    std::string title = tool.summary.substr(0, tool.summary.find(". "));
    title.replace(0, 1, lowerCase(title.substr(0, 1)));
    std::string text = ".TH " + tool.name + " 1 \"\" \"LumCommon " LUM_VERSION_STRING "\" \"User Commands\"\n" +
                       ".SH NAME\n" + tool.name + " \\- " + escapeRoff(title) + "\n.SH SYNOPSIS\n" + bold(tool.name) +
                       " [\\fIoptions\\fR] \\fIcommand\\fR [\\fIarguments\\fR]\n.SH DESCRIPTION\n" +
                       escapeRoff(tool.summary) + "\n.SH OPTIONS\nFor every command:\n";
    for (const Argument& option : tool.options) text += toRoff(option, true);
    if (!tool.footer.empty()) text += ".PP\n" + escapeRoff(tool.footer) + '\n';
    text += ".SH COMMANDS\n";
    for (const Place& place : allPlaces(tool)) {
        if (!place.page->commands.empty()) continue;
        text += ".SS " + toUsage(place) + '\n' + escapeRoff(place.page->summary) + ".\n" + toRoff(*place.page);
    }
    return text +
           ".SH EXIT STATUS\n.TP\n0\nAll was done.\n.TP\n1\nAn error, which standard error tells with its code.\n"
           ".TP\n2\nArguments that cannot be used.\n";
}

std::string toBashCompletion(const CommandPage& tool) {
    std::vector<std::string> paths;
    std::string options, words, values;
    for (const auto& [path, page] : allPlaces(tool)) {
        const auto row = [](const std::string& place, const std::vector<std::string>& names) {
            return "        " + quoteShell(place) + ") words=" + quoteShell(join(names, " ")) + " ;;\n";
        };
        std::vector<std::string> names = optionNames(page->options), next;
        if (page != &tool) {
            for (const std::string& name : optionNames(commonOptionsOf(tool))) names.push_back(name);
        }
        options += row(path, names);
        for (const CommandPage& command : page->commands) {
            next.push_back(command.name);
            paths.push_back(quoteShell(path + ' ' + command.name));
        }
        for (const Argument& argument : page->positionals) {
            next.insert(next.end(), argument.choices.begin(), argument.choices.end());
        }
        if (!next.empty()) words += row(path, next);
        for (const Argument& option : page->options) {
            if (!option.choices.empty()) values += row(path + ' ' + option.names.back(), option.choices);
        }
    }
    return replaceAll(
               "# Completion of the options, commands and fixed values of NAME for bash.\n"
               "_NAME() {\n"
               "    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}\n"
               "    local path=NAME words='' word\n"
               "    for word in \"${COMP_WORDS[@]:1:COMP_CWORD - 1}\"; do\n"
               "        case \"$path $word\" in\n"
               "        ",
               "NAME", tool.name) +
           join(paths, " | ") +
           ") path=\"$path $word\" ;;\n"
           "        esac\n"
           "    done\n"
           "    if [[ $current == -* ]]; then\n"
           "        case $path in\n" +
           options +
           "        esac\n"
           "    else\n"
           "        case $path in\n" +
           words +
           "        esac\n"
           "        case \"$path $previous\" in\n" +
           values +
           replaceAll(
               "        esac\n"
               "    fi\n"
               "    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$current\")\n"
               "}\n"
               "complete -o default -F _NAME NAME\n",
               "NAME", tool.name);
}

std::string toZshCompletion(const CommandPage& tool) {
    std::string text = "#compdef " + tool.name + "\n# Completion of the options, commands and values of " + tool.name +
                       " for zsh.\n\n";
    for (const Place& place : allPlaces(tool)) text += toZshFunction(place, tool);
    return text + '_' + tool.name + " \"$@\"\n";
}

}  // namespace LumTool
