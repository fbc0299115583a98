#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

namespace oska::tool {

/// Options that have the same meaning in every command.

/// SERVICE, required: the raw value of an OskaService.
void addServiceName(CLI::App& command, std::string& service);

/// --bundle, required.
void addBundle(CLI::App& command, std::string& path);

/// --recording; required unless the path is an optional.
void addRecording(CLI::App& command, std::string& path);
void addRecording(CLI::App& command, std::optional<std::string>& path);

/// Throws CLI::ValidationError if options `a` and `b` of the command are both standard input, which can be
/// read only once. To be called in the command's callback.
void refuseSharedInput(const CLI::App& command, const std::string& a, const std::string& b);

/// Throws CLI::ValidationError if the file of option `output` is also the file of one of `inputs`, which
/// would be lost. To be called in the command's callback, before anything is written.
void refuseOutputOverInput(const CLI::App& command, const std::string& output,
                           const std::vector<std::string>& inputs);

}  // namespace oska::tool
