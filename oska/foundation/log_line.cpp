#include "oska/foundation/log_line.h"

#include <charconv>

#include "oska/text/one_line.h"

namespace oska {
namespace {

std::string_view levelTag(OskaLogLevel level) {
    switch (level) {
        case OskaLogLevel::INFO:
            return "[INFO]  ";
        case OskaLogLevel::WARN:
            return "[WARN]  ";
        case OskaLogLevel::ERROR:
            return "[ERROR] ";
    }
    return "";
}

}  // namespace

LogValue::LogValue(double value) {
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    text.assign(digits, end);
    if (text.find_first_not_of("-0123456789") == std::string::npos) text += ".0";
}

std::string logMessage(std::string_view operation, std::string_view text,
                       std::initializer_list<LogPair> pairs) {
    std::string message = "(" + std::string(operation) + ") : " + std::string(text);
    std::string_view separator = " // ";
    for (const auto& [name, value] : pairs) {
        message.append(separator).append(name).append(" = ").append(value.text);
        separator = ", ";
    }
    return message;
}

std::string logLine(OskaLogLevel level, std::string_view tag, std::string_view message) {
    std::string line;
    line.reserve(message.size() + tag.size() + 16);
    line.append(levelTag(level)).append("[").append(tag).append("] ");
    text::appendOnOneLine(line, message);
    return line;
}

}  // namespace oska
