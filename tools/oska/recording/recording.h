#pragma once

#include <functional>
#include <optional>
#include <string>

#include "tools/oska/recording/line_reader.h"
#include "tools/oska/recording/recording_line.h"

namespace oska::tool {

/// A recording (JSON Lines) read while it grows: each line is handed out as it arrives, blank ones are
/// skipped. The first fault ends it. Threads: one.
class Recording {
public:
    /// See LineReader.
    Recording(std::string path, OskaService service, LineReader::AwaitInput awaitInput);

    /// The next sample or action. None: the end, or what `ending` and `problem` tell.
    [[nodiscard]] std::optional<RecordedLine> next();

    /// `failed` also when a line is no line of a recording.
    [[nodiscard]] LineReader::Ending ending() const;

    /// `walk.jsonl:17: "mobile_time" is not an integer`; without the number when the file cannot be read.
    [[nodiscard]] std::string problem() const;

    [[nodiscard]] const LineReader& lines() const { return lines_; }

private:
    std::string path_;
    OskaService service_;
    LineReader lines_;
    std::optional<std::string> fault_;  // of the line read last
};

}  // namespace oska::tool
