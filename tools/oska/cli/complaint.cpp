#include "tools/oska/cli/complaint.h"

#include <cstdio>

#include "oska/text/one_line.h"

namespace oska::tool {

void complain(std::string_view line) {
    std::fflush(stdout);
    const auto text = text::onOneLine(line) + '\n';
    std::fwrite(text.data(), 1, text.size(), stderr);
}

}  // namespace oska::tool
