#include "oska/foundation/log_message.h"

namespace oska {

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

}  // namespace oska
