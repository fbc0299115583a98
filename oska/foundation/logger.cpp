#include "oska/foundation/logger.h"

#include <atomic>
#include <charconv>
#include <cstdio>
#include <string>

#include "oska/foundation/log_message.h"
#include "oska/text/one_line.h"

namespace oska {
namespace {

std::atomic<bool> debugOption{true};

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

// One call, so that the C library's own lock keeps the line whole.
void writeLine(std::string line) {
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stdout);
}

}  // namespace

void OskaLogger::setDebugOption(bool set) { debugOption.store(set, std::memory_order_relaxed); }

bool OskaLogger::isEnabled() { return debugOption.load(std::memory_order_relaxed); }

void OskaLogger::log(OskaLogLevel level, std::string_view tag, std::string_view message) {
    if (!isEnabled()) return;
    std::string line;
    line.reserve(message.size() + tag.size() + 16);
    line.append(levelTag(level)).append("[").append(tag).append("] ");
    text::appendOnOneLine(line, message);
    writeLine(std::move(line));
}

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

void Log::info(std::string_view operation, std::string_view text,
               std::initializer_list<LogPair> pairs) const {
    write(OskaLogLevel::INFO, logMessage(operation, text, pairs));
}

void Log::warn(std::string_view operation, std::string_view text,
               std::initializer_list<LogPair> pairs) const {
    write(OskaLogLevel::WARN, logMessage(operation, text, pairs));
}

void Log::error(std::string_view operation, std::string_view text,
                std::initializer_list<LogPair> pairs) const {
    write(OskaLogLevel::ERROR, logMessage(operation, text, pairs));
}

void writeDirectLine(std::string_view line) { writeLine(text::onOneLine(line)); }

}  // namespace oska
