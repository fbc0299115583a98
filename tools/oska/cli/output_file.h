#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace oska::tool {

/// Whether both name one plain file, by whatever links and spellings; "-" as input is standard input. A file
/// that is not there is none.
[[nodiscard]] bool isSameFile(const std::string& output, const std::string& input);

/// Writes the whole of a file, in place of what it held. Answers with what went wrong, if anything:
/// "walk.svg: Permission denied".
[[nodiscard]] std::optional<std::string> writeOutput(const std::string& path, std::string_view content);

}  // namespace oska::tool
