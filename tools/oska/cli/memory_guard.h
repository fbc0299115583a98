#pragma once

#include <functional>

#include "tools/oska/cli/exit_status.h"

namespace oska::tool {

/// Runs the program. Memory that runs out, or a thread that cannot be started, ends it as bad input does,
/// with a line on standard error and what was printed before: from here on, on any thread, in place of an
/// abort. Once in a process.
[[nodiscard]] ExitStatus runGuarded(const std::function<ExitStatus()>& program);

}  // namespace oska::tool
