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

/// The folder of a site: SECTOR_ID/pelio.json, SECTOR_ID/dapo.json, and map images where the bundles say.
/// Only files inside the folder can be read, through symbolic links neither, and only files with the endings
/// of bundles and images: a key in the folder is not served.
///
/// Threads: any. Nothing is cached: each call reads the disk.
class SiteFolder {
public:
    [[nodiscard]] static Result<SiteFolder, Unreadable> open(const std::string& path);

    /// The file at `path`, relative to the folder, with "/" between its parts. nullopt: there is no file to
    /// serve.
    [[nodiscard]] std::optional<SiteFile> read(std::string_view path) const;

    /// The path of the file if it is one that is served, otherwise nullopt.
    [[nodiscard]] std::optional<std::string> find(const FileIdentity& wanted) const;

private:
    explicit SiteFolder(std::filesystem::path root) : root_(std::move(root)) {}

    std::filesystem::path root_;  // canonical
};

/// The version of a content: the first 8 bytes of its SHA-256, in hexadecimal.
[[nodiscard]] std::string versionOf(std::string_view content);

}  // namespace oska::tool
