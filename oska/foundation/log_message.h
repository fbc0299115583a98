#pragma once

#include <concepts>
#include <initializer_list>
#include <string>
#include <string_view>

#include "oska/foundation/logger.h"

namespace oska {

/// One value of a log line, already as text: integers in decimal, booleans as "true" or "false", text as it
/// stands; what a line must not carry is escaped when it is written.
struct LogValue {
    LogValue(bool value) : text(value ? "true" : "false") {}
    template <std::integral Integer>
    LogValue(Integer value) : text(std::to_string(value)) {}
    LogValue(double value);
    LogValue(std::string_view value) : text(value) {}
    LogValue(const std::string& value) : text(value) {}
    LogValue(const char* value) : text(value) {}

    std::string text;
};

struct LogPair {
    std::string_view name;
    LogValue value;
};

/// "(operation) : text // name = value, name = value"; without pairs, "(operation) : text".
std::string logMessage(std::string_view operation, std::string_view text,
                       std::initializer_list<LogPair> pairs = {});

/// The log of one class: its tag and the house format of a message.
class Log {
public:
    constexpr explicit Log(std::string_view tag) : tag_(tag) {}

    void info(std::string_view operation, std::string_view text,
              std::initializer_list<LogPair> pairs = {}) const;
    void warn(std::string_view operation, std::string_view text,
              std::initializer_list<LogPair> pairs = {}) const;
    void error(std::string_view operation, std::string_view text,
               std::initializer_list<LogPair> pairs = {}) const;

    /// For the few messages that have a form of their own.
    void write(OskaLogLevel level, std::string_view message) const { OskaLogger::log(level, tag_, message); }

private:
    std::string_view tag_;
};

/// Writes a diagnostic line as it stands, whatever the log switch says; what could forge a line is escaped
/// here, too.
void writeDirectLine(std::string_view line);

}  // namespace oska
