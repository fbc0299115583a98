#include "tools/oska/recording/recording.h"

#include <utility>

namespace oska::tool {

Recording::Recording(std::string path, OskaService service, LineReader::AwaitInput awaitInput)
    : path_(std::move(path)), service_(service), lines_(path_, std::move(awaitInput)) {}

std::optional<RecordedLine> Recording::next() {
    while (!fault_) {
        const auto line = lines_.next();
        if (!line) break;
        if (line->find_first_not_of(" \t\r") == std::string_view::npos) continue;
        auto parsed = parseRecordedLine(*line, service_);
        if (parsed) return *std::move(parsed);
        fault_ = parsed.error();
    }
    return std::nullopt;
}

LineReader::Ending Recording::ending() const { return fault_ ? LineReader::Ending::failed : lines_.ending(); }

std::string Recording::problem() const {
    if (!fault_) return path_ + ": " + lines_.problem();
    return path_ + ":" + std::to_string(lines_.lineNumber()) + ": " + *fault_;
}

}  // namespace oska::tool
