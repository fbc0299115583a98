#pragma once

#include <string_view>

namespace oska {

/// The three levels; each has a tag of eight characters, so that the class tag of a line always starts in
/// column 9.
enum class OskaLogLevel { INFO, WARN, ERROR };

/// The kit's log: one process-wide switch and one line format, on standard output. No timestamps, no files.
///
///     [WARN]  [PelioServiceManager] (handleRfd) : skipped because Pelio bundle is not ready
///
/// Threads: any, at any time. A line is written in one piece; lines of two threads never mix.
/// Lines are not flushed one by one: how standard output is buffered is the host's decision.
class OskaLogger {
public:
    OskaLogger() = delete;

    /// Whether log lines are written, for all services of the process; true until a host says otherwise.
    /// Takes effect with the next line of any thread.
    static void setDebugOption(bool set);

    /// For callers whose message costs more to make than to write.
    [[nodiscard]] static bool isEnabled();

    /// Writes one line when the switch is on. Control characters and line separators inside `message` are
    /// escaped (see platform/one_line.h), so that no text from a server or a file can start a line of its own
    /// or steer a terminal.
    static void log(OskaLogLevel level, std::string_view tag, std::string_view message);
};

}  // namespace oska
