#include "tools/oska/cli/command_line.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "tools/oska/cli/complaint.h"
#include "tools/oska/cli/nearest_word.h"

namespace oska::tool {
namespace {

/// Words that neither the program nor a command knows, in the order of the command line, and what they may
/// mean.
struct Unknown {
    std::vector<std::string> words;
    std::vector<std::string> meant;
};

std::optional<std::string> meantBy(const std::string& word, const CLI::App& command) {
    return word.starts_with('-') ? nearestOption(command, word) : nearestCommand(command, word);
}

void collectUnknown(const CLI::App& command, Unknown& unknown) {
    if (command.get_prefix_command()) return;  // it hands them on
    for (const auto& word : command.remaining()) {
        unknown.words.push_back(word);
        const auto meant = meantBy(word, command);
        const auto& all = unknown.meant;
        if (meant && std::find(all.begin(), all.end(), *meant) == all.end()) unknown.meant.push_back(*meant);
    }
    for (const auto* const subcommand : command.get_subcommands()) collectUnknown(*subcommand, unknown);
}

std::string describe(const Unknown& unknown) {
    const auto text = "Not expected: " + CLI::detail::join(unknown.words, " ");
    if (unknown.meant.empty()) return text;
    return text + "; did you mean " + CLI::detail::join(unknown.meant, " and ") + "?";
}

/// Prints the message as the parser does, but escapes what it quotes.
void report(const CLI::App& program, const CLI::ParseError& error) {
    std::ostringstream lines;
    program.exit(error, lines, lines);
    std::istringstream text(lines.str());
    for (std::string line; std::getline(text, line);) complain(line);
}

}  // namespace

std::optional<std::string> nearestCommand(const CLI::App& program, const std::string& word) {
    std::vector<std::string> names;
    for (const auto* const command : program.get_subcommands([](const CLI::App*) { return true; }))
        names.push_back(command->get_name());
    return nearestWord(word, names);
}

std::optional<std::string> nearestOption(const CLI::App& command, const std::string& word) {
    std::vector<std::string> names;
    for (const auto* const option : command.get_options()) {
        for (const auto& name : option->get_lnames()) names.push_back("--" + name);
    }
    return nearestWord(word.substr(0, word.find('=')), names);
}

std::optional<ExitStatus> parseCommandLine(CLI::App& program, int argc, char** argv) {
    try {
        program.parse(argc, argv);
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            program.exit(error);
            return ExitStatus::done;
        }
        Unknown unknown;
        collectUnknown(program, unknown);
        if (unknown.words.empty()) {
            report(program, error);
        } else {
            report(program, CLI::ExtrasError(describe(unknown), error.get_exit_code()));
        }
        return ExitStatus::badInput;
    }
}

}  // namespace oska::tool
