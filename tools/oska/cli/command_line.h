#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

#include "tools/oska/cli/exit_status.h"

namespace oska::tool {

/// The name of a command, or of an option of a command, that is nearest to a word that is not known; nullopt
/// if none is near.
[[nodiscard]] std::optional<std::string> nearestCommand(const CLI::App& program, const std::string& word);
[[nodiscard]] std::optional<std::string> nearestOption(const CLI::App& command, const std::string& word);

/// Parses the program's arguments and runs the command that they name. Returns nullopt if the command was
/// run; its status is known to the command then. Otherwise help has been printed, or standard error says what
/// is wrong. Words that are not known are named before options that are missing, since a mistyped option is
/// often both.
[[nodiscard]] std::optional<ExitStatus> parseCommandLine(CLI::App& program, int argc, char** argv);

}  // namespace oska::tool
