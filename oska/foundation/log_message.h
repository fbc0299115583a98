#pragma once

#include <initializer_list>
#include <string_view>

#include "oska/foundation/log_line.h"
#include "oska/foundation/logger.h"

namespace oska {

/// The log of one class: writes messages of the house format (see log_line.h) under the class's tag.
///
///     constexpr Log LOG{"DapoView"};
///     LOG.info("startGenerator", "success", {{"id", id}, {"replayMode", false}});
///     LOG.warn("stopGenerator", "skipped because rfdGenerator is nil");
///
/// A value that costs nothing to make, so each source has one of its own. Threads: any. Nothing is written
/// while `OskaLogger` is switched off.
class Log {
public:
    /// `tag` names the class in each line. It must outlive the log: use a literal.
    constexpr explicit Log(std::string_view tag) : tag_(tag) {}

    /// Writes "(operation) : text // name = value, ..." at level INFO.
    void info(std::string_view operation, std::string_view text,
              std::initializer_list<LogPair> pairs = {}) const;

    /// The same at level WARN: something was skipped or replaced, and the service goes on.
    void warn(std::string_view operation, std::string_view text,
              std::initializer_list<LogPair> pairs = {}) const;

    /// The same at level ERROR: something failed.
    void error(std::string_view operation, std::string_view text,
               std::initializer_list<LogPair> pairs = {}) const;

    /// Writes a message that has a form of its own, such as "(postRFD) 500, Request failed". Control
    /// characters and line separators are escaped.
    void write(OskaLogLevel level, std::string_view message) const { OskaLogger::log(level, tag_, message); }

private:
    std::string_view tag_;
};

}  // namespace oska
