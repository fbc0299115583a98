#pragma once

#include <concepts>
#include <initializer_list>
#include <string>
#include <string_view>

/// The house format of a log line, and the only place that knows it:
///
///     [WARN]  [PelioServiceManager] (handleRfd) : skipped because Pelio bundle is not ready
///     [ERROR] [DapoView] (startGenerator) : RFD unavailable // id = demo, msg = no radio
///
/// Functions here make text and write nothing. Threads: any; no state.
namespace oska {

// Windows' headers define ERROR; a host may include them first.
#pragma push_macro("ERROR")
#undef ERROR
/// The three levels of a log line. There is no filtering by level: all are written, or none.
enum class OskaLogLevel {
    INFO,   ///< what happened as planned
    WARN,   ///< what was skipped or replaced, while the service goes on
    ERROR,  ///< what failed
};
#pragma pop_macro("ERROR")

/// One value of a log line, already as text. What a line must not carry is escaped when the line is made.
struct LogValue {
    /// "true" or "false".
    LogValue(bool value) : text(value ? "true" : "false") {}
    /// In decimal.
    template <std::integral Integer>
    LogValue(Integer value) : text(std::to_string(value)) {}
    /// In the fewest digits that give the value back, with ".0" when it is whole.
    LogValue(double value);
    /// As it stands, without quotes.
    LogValue(std::string_view value) : text(value) {}
    LogValue(const std::string& value) : text(value) {}  ///< the same
    LogValue(const char* value) : text(value) {}         ///< the same; not null

    std::string text;  ///< what the line shows
};

/// A named value; it is written as "name = value".
struct LogPair {
    std::string_view name;  ///< a literal
    LogValue value;         ///< of any type that a LogValue takes
};

/// "(operation) : text // name = value, name = value"; without pairs, "(operation) : text".
[[nodiscard]] std::string logMessage(std::string_view operation, std::string_view text,
                                     std::initializer_list<LogPair> pairs = {});

/// A whole line without its newline: the level's tag of eight characters, "[", `tag`, "] ", `message`.
/// Control characters and line separators of `message` are escaped as in text::appendOnOneLine.
[[nodiscard]] std::string logLine(OskaLogLevel level, std::string_view tag, std::string_view message);

}  // namespace oska
