#include "tools/oska/cli/file_identity.h"

#include <sys/stat.h>
#include <unistd.h>

namespace oska::tool {
namespace {

FileIdentity identityIn(const struct stat& about) {
    return {about.st_dev, about.st_ino, S_ISREG(about.st_mode)};
}

}  // namespace

std::optional<FileIdentity> identityOf(const std::string& path) {
    struct stat about = {};
    if (stat(path.c_str(), &about) != 0) return std::nullopt;
    return identityIn(about);
}

std::optional<FileIdentity> identityOf(int openFile) {
    struct stat about = {};
    if (fstat(openFile, &about) != 0) return std::nullopt;
    return identityIn(about);
}

bool isSameFile(const std::string& output, const std::string& input) {
    const auto read = input == "-" ? identityOf(STDIN_FILENO) : identityOf(input);
    return read && read->isPlain && read == identityOf(output);
}

}  // namespace oska::tool
