#pragma once

#include <initializer_list>
#include <string_view>

#include "oska/foundation/log_line.h"
#include "oska/foundation/logger.h"

namespace oska {

/// The log of one class: writes messages of the house format under the class's tag.
///
///     constexpr Log LOG{"DapoView"};
///     LOG.warn("stopGenerator", "skipped because rfdGenerator is nil");
///
/// A value, made at compile time. Threads: any. Nothing is written while `OskaLogger` is switched off.
class Log {
public:
    /// `tag` must outlive the log: a literal.
    constexpr explicit Log(std::string_view tag) : tag_(tag) {}

    /// Writes "(operation) : text // name = value, ..." at level INFO.
    void info(std::string_view operation, std::string_view text,
              std::initializer_list<LogPair> pairs = {}) const;

    /// The same at level WARN.
    void warn(std::string_view operation, std::string_view text,
              std::initializer_list<LogPair> pairs = {}) const;

    /// The same at level ERROR.
    void error(std::string_view operation, std::string_view text,
               std::initializer_list<LogPair> pairs = {}) const;

    /// Writes `message` as it stands, for the few messages that have a form of their own.
    void write(OskaLogLevel level, std::string_view message) const { OskaLogger::log(level, tag_, message); }

private:
    std::string_view tag_;
};

}  // namespace oska
