#include "oska/foundation/logger.h"

#include <atomic>
#include <cstdio>
#include <string>

#include "oska/text/one_line.h"

namespace oska {
namespace {

std::atomic<bool> debugOption{true};

// One call, so that the C library's own lock keeps the line whole.
void writeLine(std::string line) {
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stdout);
}

}  // namespace

void OskaLogger::setDebugOption(bool set) { debugOption.store(set, std::memory_order_relaxed); }

bool OskaLogger::isEnabled() { return debugOption.load(std::memory_order_relaxed); }

void OskaLogger::log(OskaLogLevel level, std::string_view tag, std::string_view message) {
    if (isEnabled()) writeLine(logLine(level, tag, message));
}

void writeDirectLine(std::string_view line) { writeLine(text::onOneLine(line)); }

}  // namespace oska
