#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>

#include "tools/oska/cli/command_line.h"
#include "tools/oska/cli/complaint.h"
#include "tools/oska/cli/memory_guard.h"
#include "tools/oska/commands/commands.h"

using oska::tool::ExitStatus;

namespace {

constexpr auto ABOUT =
    R"(Drives the kit from a shell: replays recorded walks, simulates and explains them, runs services, serves and checks
sites.

Standard output carries the kit's own lines, which begin with [, ( or E, and events, one JSON object a line.
Standard error carries errors and progress.)";

constexpr auto MORE =
    R"(Exit status: 0 all done; 1 the first initialisation or the first start failed; 2 bad usage or bad input;
130 interrupted.

Example: oska replay pelio --bundle site.json --recording walk.jsonl
`oska COMMAND --help` explains every option of a command.)";

constexpr std::size_t STANDARD_OUTPUT_BUFFER = std::size_t{64} << 10;

// A stream that the caller closed would be the next file opened, and that file would take its place.
void fillClosedStreams() {
    int file = -1;
    do file = open("/dev/null", O_RDWR);
    while (file >= 0 && file <= STDERR_FILENO);
    if (file >= 0) close(file);
}

// Scripts must notice a full disk.
ExitStatus flushed(ExitStatus status) {
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return status;
    oska::tool::complain("standard output: " + std::generic_category().message(errno));
    return ExitStatus::badInput;
}

// The parser would only miss a command, without a word on the one that was meant.
bool isCommand(const CLI::App& program, const std::string& name) {
    const auto isNamedSo = [&](const CLI::App* command) { return command->check_name(name); };
    return !program.get_subcommands(isNamedSo).empty();
}

ExitStatus run(int argc, char** argv) {
    CLI::App program(ABOUT, "oska");
    program.footer(MORE);
    program.set_version_flag("--version", "oska " OSKA_VERSION, "Print the kit's version and exit.");
    program.require_subcommand(1);
    auto status = ExitStatus::done;
    oska::tool::addCheck(program, status);
    oska::tool::addExplain(program, status);
    oska::tool::addReplay(program, status);
    oska::tool::addRun(program, status);
    oska::tool::addServe(program, status);
    oska::tool::addSimulate(program, status);
    if (argc > 1 && argv[1][0] != '-' && !isCommand(program, argv[1])) {
        const auto meant = oska::tool::nearestCommand(program, argv[1]);
        oska::tool::complain(std::string("oska: there is no command ") + argv[1] +
                             (meant ? "; did you mean " + *meant + "? " : "; ") + "oska --help lists them");
        return ExitStatus::badInput;
    }
    return oska::tool::parseCommandLine(program, argc, argv).value_or(status);
}

}  // namespace

int main(int argc, char** argv) {
    fillClosedStreams();
    // The commands flush before they wait; until then lines are cheap.
    std::setvbuf(stdout, nullptr, _IOFBF, STANDARD_OUTPUT_BUFFER);
    return static_cast<int>(oska::tool::runGuarded([&] { return flushed(run(argc, argv)); }));
}
