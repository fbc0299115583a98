#include "tools/oska/cli/file_identity.h"

#include <sys/stat.h>

namespace oska::tool {

std::optional<FileIdentity> identityOf(const std::string& path) {
    struct stat about = {};
    if (stat(path.c_str(), &about) != 0) return std::nullopt;
    return FileIdentity{about.st_dev, about.st_ino};
}

std::optional<FileIdentity> identityOf(int openFile) {
    struct stat about = {};
    if (fstat(openFile, &about) != 0) return std::nullopt;
    return FileIdentity{about.st_dev, about.st_ino};
}

}  // namespace oska::tool
