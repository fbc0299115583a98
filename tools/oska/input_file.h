#pragma once

#include <string>

#include "oska/platform/result.h"

namespace oska::tool {

/// A file that could not be read.
struct Unreadable {
    std::string problem;  ///< "site.json: No such file or directory"
};

/// The whole of a file; "-" is standard input.
[[nodiscard]] platform::Result<std::string, Unreadable> readInput(const std::string& path);

}  // namespace oska::tool
