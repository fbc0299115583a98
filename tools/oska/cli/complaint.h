#pragma once

#include <string_view>

namespace oska::tool {

/// Flushes standard output, then writes one line to standard error. Control characters and line separators in
/// it are escaped as in JSON, so that quoted names cannot start a new line or control the terminal. Threads:
/// any.
void complain(std::string_view line);

}  // namespace oska::tool
