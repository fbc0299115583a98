#pragma once

#include <string_view>

namespace oska::tool {

/// Writes one line to standard error, behind everything that was printed so far. Threads: any.
void complain(std::string_view line);

}  // namespace oska::tool
