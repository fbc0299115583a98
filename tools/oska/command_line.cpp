#include "tools/oska/command_line.h"

#include <string>
#include <vector>

namespace oska::tool {
namespace {

/// What neither the program nor the command understood, in the order of the command line.
std::vector<std::string> unknownWords(const CLI::App& command) {
    if (command.get_prefix_command()) return {};  // it hands them on
    auto words = command.remaining();
    for (const auto* const subcommand : command.get_subcommands()) {
        const auto more = unknownWords(*subcommand);
        words.insert(words.end(), more.begin(), more.end());
    }
    return words;
}

}  // namespace

std::optional<ExitStatus> parseCommandLine(CLI::App& program, int argc, char** argv) {
    try {
        program.parse(argc, argv);
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        const bool isMistake = error.get_exit_code() != 0;
        const auto unknown = isMistake ? unknownWords(program) : std::vector<std::string>();
        if (unknown.empty()) {
            program.exit(error);
        } else {
            program.exit(
                CLI::ExtrasError("Not expected: " + CLI::detail::join(unknown, " "), error.get_exit_code()));
        }
        return isMistake ? ExitStatus::badInput : ExitStatus::done;
    }
}

}  // namespace oska::tool
