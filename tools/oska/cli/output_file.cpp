#include "tools/oska/cli/output_file.h"

#include <cerrno>
#include <cstdio>

#include "tools/oska/cli/input_file.h"

namespace oska::tool {

std::optional<std::string> writeOutput(const std::string& path, std::string_view content) {
    std::FILE* const file = std::fopen(path.c_str(), "we");
    bool isWritten = file != nullptr;
    if (file != nullptr) {
        isWritten = std::fwrite(content.data(), 1, content.size(), file) == content.size();
        isWritten = std::fclose(file) == 0 && isWritten;
    }
    if (isWritten) return std::nullopt;
    return systemProblem(path, errno);
}

}  // namespace oska::tool
