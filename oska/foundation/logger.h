#pragma once

#include <string_view>

#include "oska/foundation/log_line.h"

namespace oska {

/// The kit's log: one process-wide switch over lines of one format (see log_line.h) on standard output. No
/// timestamps, no files.
///
/// Threads: any, at any time. A line is written in one piece; lines of two threads never mix.
/// Lines are not flushed one by one: how standard output is buffered is the host's decision.
class OskaLogger {
public:
    OskaLogger() = delete;

    /// Sets whether log lines are written, for all services of the process; true until a host sets it. Takes
    /// effect with the next line of any thread.
    static void setDebugOption(bool set);

    /// Whether log lines are written: for callers whose message costs more to make than to write.
    [[nodiscard]] static bool isEnabled();

    /// Writes one line when the switch is on. Control characters and line separators inside `message` are
    /// escaped, so that no text from a server or a file can start a line or steer a terminal.
    static void log(OskaLogLevel level, std::string_view tag, std::string_view message);
};

/// Writes a diagnostic line that has neither level nor tag, also while the log is switched off. Control
/// characters and line separators are escaped here, too. Threads: as for OskaLogger.
void writeDirectLine(std::string_view line);

}  // namespace oska
