#include "tools/oska/hosts/events.h"

#include <cstdio>

#include "oska/text/one_line.h"
#include "tools/oska/cli/complaint.h"

namespace oska::tool {

std::string Events::beginLine(std::string_view event) const {
    std::string line;
    line.reserve(256);
    line += "{\"at\":";
    json::appendInteger(line, platform::millisecondsBetween(begin_, clock_->now()));
    line.append(",\"event\":\"").append(event).append("\"");
    return line;
}

// One call, so that the C library's own lock keeps the line whole.
// JSON leaves DEL, C1 and the two line separators as they are; some readers of lines and terminals act on
// them.
void Events::writeLine(std::string line) const {
    line = text::onOneLine(line) + "}\n";
    std::fwrite(line.data(), 1, line.size(), stdout);
    if (listener_) listener_(std::string_view(line).substr(0, line.size() - 1));
}

void Events::reportLoss(std::string_view key, std::string_view problem) {
    complain("cannot print \"" + std::string(key) + "\": " + std::string(problem));
}

}  // namespace oska::tool
