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
    return fault_ ? place() + ": " + *fault_ : path_ + ": " + lines_.problem();
}

std::string Recording::place() const { return path_ + ":" + std::to_string(lines_.lineNumber()); }

std::optional<std::string> readRecording(const std::string& path, const TakeLine& take) {
    // Reading itself waits for what is not there yet.
    Recording recording(path, OskaService::dapo, [](int) { return true; });
    while (auto line = recording.next()) {
        if (const auto refusal = take(*std::move(line))) return recording.place() + ": " + *refusal;
    }
    if (recording.ending() == LineReader::Ending::failed) return recording.problem();
    return std::nullopt;
}

}  // namespace oska::tool
