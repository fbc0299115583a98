#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "tools/oska/cli/complaint.h"
#include "tools/oska/cli/input_file.h"
#include "tools/oska/commands/commands.h"

namespace oska::tool {
namespace {

constexpr auto ABOUT = "Serve a folder as a site, for development and trials.";
constexpr auto PROGRAM = "oska-serve";

/// Replaces this process by the server's program, see tools/oska_serve. Returns only if that fails.
ExitStatus becomeServer(std::vector<std::string> arguments) {
    std::error_code error;
    const auto path =
        std::filesystem::read_symlink("/proc/self/exe", error).replace_filename(PROGRAM).string();
    arguments.insert(arguments.begin(), path);
    std::vector<char*> words;
    for (auto& argument : arguments) words.push_back(argument.data());
    words.push_back(nullptr);
    execv(path.c_str(), words.data());
    complain("oska: cannot run " + systemProblem(path, errno));
    return ExitStatus::badInput;
}

}  // namespace

void addServe(CLI::App& program, ExitStatus& status) {
    auto* const command = program.add_subcommand("serve", ABOUT);
    // All arguments that follow are passed to the server, --help included.
    command->set_help_flag();
    command->prefix_command();
    command->callback([command, &status] { status = becomeServer(command->remaining()); });
}

}  // namespace oska::tool
