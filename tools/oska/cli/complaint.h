#pragma once

#include <string_view>

namespace oska::tool {

/// Writes one line to standard error, behind everything that was printed so far. Whatever names it quotes, it
/// stays one line and steers no terminal: control characters and line separators are escaped as in JSON.
/// Threads: any.
void complain(std::string_view line);

}  // namespace oska::tool
