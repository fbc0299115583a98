#pragma once

#include <string>

#include "oska/json/result.h"
#include "tools/oska/cli/exit_status.h"

namespace oska::tool {

/// A file that could not be read.
struct Unreadable {
    std::string problem;         ///< "site.json: No such file or directory"
    bool isInterrupted = false;  ///< Ctrl-C ended the wait for its content; there is no problem then
};

/// What the system says of a file: "site.json: No such file or directory". `error`: a value of errno.
[[nodiscard]] std::string systemProblem(const std::string& path, int error);

/// Opens a file for reading; "-" is standard input. Never waits, not even for the writer of a named pipe; the
/// first read does. Returns a negative number on failure, with the reason in `errno`.
[[nodiscard]] int openInput(const std::string& path);

/// The whole of a file; "-" is standard input.
[[nodiscard]] Result<std::string, Unreadable> readInput(const std::string& path);

/// Writes the problem to standard error, unless it is an interruption. Returns the exit status for it.
ExitStatus complainOf(const Unreadable& unreadable);

}  // namespace oska::tool
