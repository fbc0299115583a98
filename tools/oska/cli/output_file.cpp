#include "tools/oska/cli/output_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace oska::tool {

bool isSameFile(const std::string& output, const std::string& input) {
    struct stat written = {};
    struct stat read = {};
    const int found = input == "-" ? fstat(STDIN_FILENO, &read) : stat(input.c_str(), &read);
    if (found != 0 || stat(output.c_str(), &written) != 0) return false;
    return S_ISREG(read.st_mode) && read.st_dev == written.st_dev && read.st_ino == written.st_ino;
}

std::optional<std::string> writeOutput(const std::string& path, std::string_view content) {
    std::FILE* const file = std::fopen(path.c_str(), "we");
    bool isWritten = file != nullptr;
    if (file != nullptr) {
        isWritten = std::fwrite(content.data(), 1, content.size(), file) == content.size();
        isWritten = std::fclose(file) == 0 && isWritten;
    }
    if (isWritten) return std::nullopt;
    return path + ": " + std::generic_category().message(errno);
}

}  // namespace oska::tool
