#include "tools/oska/recording/recording_line.h"

#include <array>
#include <utility>

#include "oska/json/json.h"
#include "tools/oska/cli/wording.h"

namespace oska::tool {

namespace json = json;

namespace {

using Strengths = platform::ReceivedForce::Strengths;
using Parsed = Result<RecordedLine, std::string>;

struct Line {
    std::int64_t mobileTime = 0;
    std::optional<std::string> action;
    std::optional<Strengths> rfs;
};

template <class Visit>
void fields(Visit& f, Line& line) {
    f("mobile_time", line.mobileTime);
    f("action", line.action);
    f("rfs", line.rfs);
}

struct NoArguments {};

template <class Visit>
void fields(Visit&, NoArguments&) {}

struct UpdateArguments {
    std::optional<bool> forceUpdate;
};

template <class Visit>
void fields(Visit& f, UpdateArguments& arguments) {
    f("forceUpdate", arguments.forceUpdate);
}

struct VisibilityArguments {
    bool isVisible = false;
};

template <class Visit>
void fields(Visit& f, VisibilityArguments& arguments) {
    f("isVisible", arguments.isVisible);
}

struct SecondsArguments {
    double seconds = 0;
};

template <class Visit>
void fields(Visit& f, SecondsArguments& arguments) {
    f("seconds", arguments.seconds);
}

/// The key must be there, though its value may be null: to remove an interval is a decision, to forget it is
/// a mistake.
struct NumberOrNull {
    std::optional<double> number;
};

bool read(json::Reader& reader, NumberOrNull& value) { return json::read(reader, value.number); }

struct OptionalSecondsArguments {
    NumberOrNull seconds;
};

template <class Visit>
void fields(Visit& f, OptionalSecondsArguments& arguments) {
    f("seconds", arguments.seconds);
}

void take(Action&, const NoArguments&) {}
void take(Action& action, const UpdateArguments& given) {
    action.forceUpdate = given.forceUpdate.value_or(false);
}
void take(Action& action, const VisibilityArguments& given) { action.isVisible = given.isVisible; }
void take(Action& action, const SecondsArguments& given) { action.seconds = given.seconds; }
void take(Action& action, const OptionalSecondsArguments& given) { action.seconds = given.seconds.number; }

/// Reads the arguments of one action from its line. Returns the reason if that fails.
using ArgumentReader = std::optional<std::string> (*)(std::string_view line, Action& action);

bool isTopLevel(std::string_view path) { return path.find_first_of(".[") == std::string_view::npos; }

std::string reason(const json::DecodeError& error) {
    if (error.kind == json::DecodeError::Kind::malformed) {
        return "not JSON: expected " + error.expected + ", found " + error.found;
    }
    if (error.path.empty()) return "not a JSON object";
    const auto place = isTopLevel(error.path) ? inQuotes(error.path) : error.path;
    return place +
           (error.kind == json::DecodeError::Kind::missing ? " is missing" : " is not " + error.expected);
}

template <class Arguments>
std::optional<std::string> readArguments(std::string_view line, Action& action) {
    const auto arguments = json::decode<Arguments>(line);
    if (!arguments) return reason(arguments.error());
    take(action, *arguments);
    return std::nullopt;
}

struct KnownAction {
    std::string_view name;
    ActionKind kind;
    bool dapoOnly;
    ArgumentReader arguments;
};

constexpr std::array KNOWN_ACTIONS{
    KnownAction{"start", ActionKind::start, false, readArguments<NoArguments>},
    KnownAction{"stop", ActionKind::stop, false, readArguments<NoArguments>},
    KnownAction{"initialize", ActionKind::initialize, false, readArguments<UpdateArguments>},
    KnownAction{"tap", ActionKind::tap, true, readArguments<NoArguments>},
    KnownAction{"foreground", ActionKind::foreground, true, readArguments<NoArguments>},
    KnownAction{"setVisibility", ActionKind::setVisibility, true, readArguments<VisibilityArguments>},
    KnownAction{"setSelectionInterval", ActionKind::setSelectionInterval, true,
                readArguments<SecondsArguments>},
    KnownAction{"setUnchangedDeliveryInterval", ActionKind::setUnchangedDeliveryInterval, true,
                readArguments<OptionalSecondsArguments>},
};

const KnownAction* knownAction(std::string_view name) {
    for (const auto& known : KNOWN_ACTIONS) {
        if (known.name == name) return &known;
    }
    return nullptr;
}

Parsed parseAction(std::string_view line, std::int64_t mobileTime, std::string_view name,
                   OskaService service) {
    const auto* const known = knownAction(name);
    if (known == nullptr) return "unknown action " + inQuotes(name);
    if (known->dapoOnly && service != OskaService::dapo) {
        return "the action " + inQuotes(name) + " is not one of the Pelio service's";
    }
    Action action{.kind = known->kind, .seconds = {}};
    if (auto problem = known->arguments(line, action)) return *std::move(problem);
    return RecordedLine{mobileTime, action};
}

}  // namespace

Parsed parseRecordedLine(std::string_view text, OskaService service) {
    auto decoded = json::decode<Line>(text);
    if (!decoded) return reason(decoded.error());
    auto line = *std::move(decoded);
    if (line.action && line.rfs) return std::string(R"(both "rfs" and "action", which are two lines)");
    if (line.action) return parseAction(text, line.mobileTime, *line.action, service);
    if (!line.rfs) return std::string(R"(neither "rfs" nor "action")");
    return RecordedLine{line.mobileTime, platform::ReceivedForce{line.mobileTime, *std::move(line.rfs)}};
}

}  // namespace oska::tool
