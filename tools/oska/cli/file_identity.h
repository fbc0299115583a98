#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace oska::tool {

/// Which file it is. All names of a file, links of both kinds included, have the same identity. A value.
struct FileIdentity {
    dev_t device;
    ino_t number;
    bool isPlain;  ///< false for a folder, a pipe, a terminal and the like

    bool operator==(const FileIdentity&) const = default;
};

/// nullopt: there is no such file. Threads: any.
[[nodiscard]] std::optional<FileIdentity> identityOf(const std::string& path);
[[nodiscard]] std::optional<FileIdentity> identityOf(int openFile);

/// Whether both are the same plain file; "-" as input is standard input. False if one of them does not exist.
[[nodiscard]] bool isSameFile(const std::string& output, const std::string& input);

}  // namespace oska::tool
