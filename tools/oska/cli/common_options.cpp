#include "tools/oska/cli/common_options.h"

#include "tools/oska/cli/file_identity.h"

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

void refuseOutputOverInput(const CLI::App& command, const std::string& output,
                           const std::vector<std::string>& inputs) {
    if (command.count(output) == 0) return;
    const auto path = command.get_option(output)->as<std::string>();
    for (const auto& input : inputs) {
        if (command.count(input) == 0) continue;
        for (const auto& read : command.get_option(input)->as<std::vector<std::string>>()) {
            if (!isSameFile(path, read)) continue;
            throw CLI::ValidationError(output + " " + path + " is the file of " + input +
                                       ", which would be lost");
        }
    }
}

}  // namespace oska::tool
