#include "tools/site_viewer/walk.h"

#include <QFile>
#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "oska/json/json.h"
#include "oska/platform/clock.h"

namespace viewer {

/// A line as the file has it. In this namespace and not a nameless one, so that the decoder finds `fields`.
struct WalkLine {
    static constexpr std::string_view TYPE_NAME = "WalkLine";
    std::int64_t mobile_time = 0;
    std::optional<oska::platform::ReceivedForce::Strengths> rfs;
    std::optional<std::string> action;
};

template <class Visit>
void fields(Visit& f, WalkLine& line) {
    f("mobile_time", line.mobile_time);
    f("rfs", line.rfs);
    f("action", line.action);
}

namespace {

using oska::Result;
using std::chrono::milliseconds;

constexpr milliseconds LONGEST = std::chrono::hours(24);

Result<WalkLine, std::string> parse(const QByteArray& text) {
    auto line =
        oska::json::decode<WalkLine>(std::string_view(text.data(), static_cast<std::size_t>(text.size())));
    if (!line) return line.error().message();
    if (line->rfs.has_value() == line->action.has_value())
        return std::string("neither a sample, with \"rfs\", nor an action, with \"action\"");
    return *std::move(line);
}

/// The walk as it is read, line by line.
class Reading {
public:
    /// Why the line cannot be part of a walk.
    std::optional<std::string> add(const QByteArray& text) {
        auto parsed = parse(text);
        if (!parsed) return parsed.error();
        auto line = *std::move(parsed);
        if (line.action) {
            ++walk_.actions;
            return std::nullopt;
        }
        const oska::platform::WallTime stamp{line.mobile_time, 0};
        if (walk_.samples.empty()) first_ = stamp;
        const milliseconds since(oska::platform::millisecondsBetween(first_, stamp));
        if (since > LONGEST) return std::string("more than a day after the first sample");
        due_ = std::max(due_, since);
        walk_.samples.push_back({due_, {line.mobile_time, *std::move(line.rfs)}});
        return std::nullopt;
    }

    Walk take() { return std::move(walk_); }

private:
    oska::platform::WallTime first_;
    milliseconds due_{0};
    Walk walk_;
};

}  // namespace

Result<Walk, std::string> loadWalk(const std::string& path) {
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::ReadOnly)) return path + ": " + file.errorString().toStdString();
    Reading reading;
    int number = 0;
    for (auto line = file.readLine(); !line.isEmpty(); line = file.readLine()) {
        ++number;
        const auto text = line.trimmed();
        if (text.isEmpty()) continue;
        if (const auto problem = reading.add(text))
            return path + ":" + std::to_string(number) + ": " + *problem;
    }
    if (file.error() != QFileDevice::NoError) return path + ": " + file.errorString().toStdString();
    auto walk = reading.take();
    if (walk.samples.empty()) return path + ": no sample in it";
    return walk;
}

}  // namespace viewer
