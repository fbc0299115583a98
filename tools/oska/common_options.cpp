#include "tools/oska/common_options.h"

namespace oska::tool {
namespace {

template <class Path>
CLI::Option& addRecordingOption(CLI::App& command, Path& path) {
    return *command
                .add_option(
                    "--recording", path,
                    "The walk, JSON Lines; - is standard input, whose lines are handled as they arrive.\n"
                    "  --recording walk.jsonl")
                ->type_name("FILE");
}

}  // namespace

void addServiceName(CLI::App& command, std::string& service) {
    command.add_option("SERVICE", service, "Which service: dapo or pelio.")
        ->required()
        ->check(CLI::IsMember({"dapo", "pelio"}));
}

void addBundle(CLI::App& command, std::string& path) {
    command.add_option("--bundle", path, "The site's bundle; - is standard input.\n  --bundle site.json")
        ->required()
        ->type_name("FILE");
}

void addRecording(CLI::App& command, std::string& path) { addRecordingOption(command, path).required(); }

void addRecording(CLI::App& command, std::optional<std::string>& path) { addRecordingOption(command, path); }

void refuseSharedInput(const CLI::App& command, const std::string& a, const std::string& b) {
    const auto isStandardInput = [&](const std::string& option) {
        return command.get_option(option)->as<std::string>() == "-";
    };
    if (!isStandardInput(a) || !isStandardInput(b)) return;
    throw CLI::ValidationError("standard input cannot be both " + a + " and " + b);
}

}  // namespace oska::tool
