#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "oska/json/result.h"
#include "tools/oska/cli/file_identity.h"
#include "tools/oska/cli/input_file.h"

namespace oska::tool {

struct SiteFile {
    std::string content;
    std::string_view type;  ///< media type; static
};

/// The folder that a site is served from: SECTOR_ID/pelio.json, SECTOR_ID/dapo.json, and map images wherever
/// the bundles say. Nothing outside of it can be reached, by symbolic links neither, and only files of the
/// kinds that a site is made of, told by their names: a key left in the folder stays where it is.
///
/// Threads: any. Nothing is kept: each call looks at the disk anew.
class SiteFolder {
public:
    [[nodiscard]] static Result<SiteFolder, Unreadable> open(const std::string& path);

    /// The file at `path`, relative to the folder and with "/" between its parts. None: nothing to serve
    /// there.
    [[nodiscard]] std::optional<SiteFile> read(std::string_view path) const;

    /// The path of the file, if it is one that is served.
    [[nodiscard]] std::optional<std::string> find(const FileIdentity& wanted) const;

private:
    explicit SiteFolder(std::filesystem::path root) : root_(std::move(root)) {}

    std::filesystem::path root_;  // canonical
};

/// What tells two contents apart: the beginning of their SHA-256, in hexadecimal.
[[nodiscard]] std::string versionOf(std::string_view content);

}  // namespace oska::tool
