#pragma once

#include <functional>
#include <optional>
#include <string>

#include "tools/oska/recording/line_reader.h"
#include "tools/oska/recording/recording_line.h"

namespace oska::tool {

/// A recording (JSON Lines) that may still grow while it is read: each line is returned as soon as it
/// arrives. Blank lines are skipped. Reading ends at the first line that is not valid. Threads: one.
class Recording {
public:
    /// `service` decides which actions are valid; Dapo's are all that there are. For `awaitInput` see
    /// LineReader.
    Recording(std::string path, OskaService service, LineReader::AwaitInput awaitInput);

    /// The next sample or action. nullopt: there is none; `ending` says why.
    [[nodiscard]] std::optional<RecordedLine> next();

    /// `failed` if the file cannot be read or if a line is not valid.
    [[nodiscard]] LineReader::Ending ending() const;

    /// `walk.jsonl:17: "mobile_time" is not an integer`; without the number if the file cannot be read.
    [[nodiscard]] std::string problem() const;

    /// Where the line returned last stands: `walk.jsonl:17`.
    [[nodiscard]] std::string place() const;

    [[nodiscard]] const LineReader& lines() const { return lines_; }

private:
    std::string path_;
    OskaService service_;
    LineReader lines_;
    std::optional<std::string> fault_;  // of the line read last
};

/// Takes one line of a recording, or returns why it refuses the line.
using TakeLine = std::function<std::optional<std::string>(RecordedLine line)>;

/// Passes all lines of the recording at `path` to `take`, in their order; any action is valid. Returns
/// nullopt when all were read and taken, otherwise the first fault, in the words of Recording::problem.
[[nodiscard]] std::optional<std::string> readRecording(const std::string& path, const TakeLine& take);

}  // namespace oska::tool
