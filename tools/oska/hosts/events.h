#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "oska/json/json.h"
#include "oska/platform/clock.h"

namespace oska::tool {

/// What a host hears, as lines on standard output, one JSON object each:
///
///     {"at":500,"event":"onPelioResult","result":{"mobile_time":1700000000500,...}}
///
/// They are written to the C library's buffer of standard output, as are the kit's own lines, so that the
/// order is kept. A caller that waits must flush it. Threads: any; a line is written in one piece.
class Events {
public:
    /// The run begins now.
    explicit Events(std::shared_ptr<const platform::WallClock> clock)
        : clock_(std::move(clock)), begin_(clock_->now()) {}

    /// From now on `listener` is called with each line, too, without its line break.
    void listen(std::function<void(std::string_view line)> listener) { listener_ = std::move(listener); }

    /// `keysAndValues`: each key followed by its value, which is a bool, an integer, a text, a record or a
    /// vector.
    template <class... KeysAndValues>
    void print(std::string_view event, const KeysAndValues&... keysAndValues) const {
        std::string line = beginLine(event);
        appendMembers(line, keysAndValues...);
        writeLine(std::move(line));
    }

    /// An outcome; the code's name is printed on failure only.
    template <class Code>
    void printOutcome(std::string_view event, bool success, std::optional<Code> code) const {
        if (code) {
            print(event, "success", success, "code", std::string(caseName(*code)));
        } else {
            print(event, "success", success);
        }
    }

private:
    template <class Value, class... Rest>
    static void appendMembers(std::string& line, std::string_view key, const Value& value,
                              const Rest&... rest) {
        line.append(",\"").append(key).append("\":");
        if (const auto problem = json::append(line, value, json::Slashes::plain)) {
            line += "null";
            reportLoss(key, problem->message());
        }
        if constexpr (sizeof...(rest) > 0) appendMembers(line, rest...);
    }

    [[nodiscard]] std::string beginLine(std::string_view event) const;
    void writeLine(std::string line) const;
    /// Coordinates can be infinite, which JSON cannot express: the line has null, standard error says why.
    static void reportLoss(std::string_view key, std::string_view problem);

    std::shared_ptr<const platform::WallClock> clock_;
    platform::WallTime begin_;
    std::function<void(std::string_view line)> listener_;
};

}  // namespace oska::tool
