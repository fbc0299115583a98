#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

namespace oska::tool {

/// Options that mean the same in every command that has them.

/// SERVICE, required: the raw value of an OskaService.
void addServiceName(CLI::App& command, std::string& service);

/// --bundle, required.
void addBundle(CLI::App& command, std::string& path);

/// --recording, required where the path is no optional.
void addRecording(CLI::App& command, std::string& path);
void addRecording(CLI::App& command, std::optional<std::string>& path);

/// Throws CLI::ValidationError when options `a` and `b` of the command are both standard input, which can be
/// read only once. For the command's own callback.
void refuseSharedInput(const CLI::App& command, const std::string& a, const std::string& b);

/// Throws CLI::ValidationError when the file of option `output`, if it was given, is that of one of `inputs`:
/// it would be lost. For the command's own callback, before anything is written.
void refuseOutputOverInput(const CLI::App& command, const std::string& output,
                           const std::vector<std::string>& inputs);

}  // namespace oska::tool
