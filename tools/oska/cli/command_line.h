#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

#include "tools/oska/cli/exit_status.h"

namespace oska::tool {

/// The command, or the option of a command, that was meant by a word nobody knows, if one may have been.
[[nodiscard]] std::optional<std::string> nearestCommand(const CLI::App& program, const std::string& word);
[[nodiscard]] std::optional<std::string> nearestOption(const CLI::App& command, const std::string& word);

/// Parses the program's arguments and runs the command that they name. None: that went well, and the command
/// knows how it ended. Otherwise help has been printed, or standard error says what is wrong: words that
/// nobody knows come before anything that is missing, since a mistyped option is often both.
[[nodiscard]] std::optional<ExitStatus> parseCommandLine(CLI::App& program, int argc, char** argv);

}  // namespace oska::tool
