#pragma once

#include "tools/oska/cli/exit_status.h"

namespace CLI {
class App;
}

/// The commands: each adds itself to the program's options, and says in `status` how it ended once it has
/// run. One command, one file of its name.
namespace oska::tool {

void addCheck(CLI::App& program, ExitStatus& status);
void addExplain(CLI::App& program, ExitStatus& status);
void addReplay(CLI::App& program, ExitStatus& status);
void addRun(CLI::App& program, ExitStatus& status);
void addServe(CLI::App& program, ExitStatus& status);
void addSimulate(CLI::App& program, ExitStatus& status);

}  // namespace oska::tool
