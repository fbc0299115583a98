#include "tools/oska/events.h"

#include <cstdio>

#include "tools/oska/complaint.h"

namespace oska::tool {

std::string Events::beginLine(std::string_view event) const {
    std::string line;
    line.reserve(256);
    line += "{\"at\":";
    platform::json::appendInteger(line, platform::millisecondsBetween(begin_, clock_->now()));
    line.append(",\"event\":\"").append(event).append("\"");
    return line;
}

// One call, so that the C library's own lock keeps the line whole.
void Events::writeLine(std::string line) const {
    line += "}\n";
    std::fwrite(line.data(), 1, line.size(), stdout);
    if (listener_) listener_(std::string_view(line).substr(0, line.size() - 1));
}

void Events::reportLoss(std::string_view key, std::string_view problem) {
    complain("cannot print \"" + std::string(key) + "\": " + std::string(problem));
}

}  // namespace oska::tool
