#include "tools/oska/complaint.h"

#include <cstdio>
#include <string>

namespace oska::tool {

void complain(std::string_view line) {
    std::fflush(stdout);
    const auto text = std::string(line) + '\n';
    std::fwrite(text.data(), 1, text.size(), stderr);
}

}  // namespace oska::tool
