#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace oska::tool {

/// Which file it is, whatever it is called: the same for each of its names, links of both kinds included.
struct FileIdentity {
    dev_t device;
    ino_t number;

    bool operator==(const FileIdentity&) const = default;
};

/// None: there is no such file. Threads: any.
[[nodiscard]] std::optional<FileIdentity> identityOf(const std::string& path);
[[nodiscard]] std::optional<FileIdentity> identityOf(int openFile);

}  // namespace oska::tool
