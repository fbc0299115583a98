#include "tools/oska_serve/site_folder.h"

#include <openssl/sha.h>

#include <algorithm>
#include <array>
#include <system_error>
#include <utility>

namespace oska::tool {

namespace fs = std::filesystem;

namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 7> TYPES{{
    {".gif", "image/gif"},
    {".jpeg", "image/jpeg"},
    {".jpg", "image/jpeg"},
    {".json", "application/json"},
    {".png", "image/png"},
    {".svg", "image/svg+xml"},
    {".webp", "image/webp"},
}};

std::string lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return text;
}

std::optional<std::string_view> typeOf(const fs::path& file) {
    const auto extension = lowered(file.extension().string());
    const auto* const found =
        std::find_if(TYPES.begin(), TYPES.end(), [&](const auto& type) { return type.first == extension; });
    return found == TYPES.end() ? std::nullopt : std::optional(found->second);
}

bool isBelow(const fs::path& root, const fs::path& file) {
    return std::mismatch(root.begin(), root.end(), file.begin(), file.end()).first == root.end();
}

}  // namespace

Result<SiteFolder, Unreadable> SiteFolder::open(const std::string& path) {
    std::error_code error;
    auto root = fs::canonical(path, error);
    if (!error) fs::directory_iterator(root, error);
    if (error) return Unreadable{path + ": " + error.message()};
    return SiteFolder(std::move(root));
}

std::optional<SiteFile> SiteFolder::read(std::string_view path) const {
    if (path.empty() || path.find('\0') != std::string_view::npos) return std::nullopt;
    std::error_code error;
    // An absolute path would replace the root.
    const auto file = fs::canonical(root_ / fs::path(path).relative_path(), error);
    if (error || !isBelow(root_, file) || !fs::is_regular_file(file, error)) return std::nullopt;
    const auto type = typeOf(file);
    if (!type) return std::nullopt;
    auto content = readInput(file.string());
    if (!content) return std::nullopt;
    return SiteFile{*std::move(content), *type};
}

std::optional<std::string> SiteFolder::find(const FileIdentity& wanted) const {
    std::error_code error;
    std::error_code unknown;
    fs::recursive_directory_iterator entries(root_, fs::directory_options::skip_permission_denied, error);
    // Links are skipped: their target is served under its own path inside the folder, or not at all.
    for (; !error && entries != fs::recursive_directory_iterator(); entries.increment(error)) {
        const auto& file = entries->path();
        const bool isServed =
            entries->symlink_status(unknown).type() == fs::file_type::regular && typeOf(file);
        if (isServed && identityOf(file.string()) == wanted) return file.string();
    }
    return std::nullopt;
}

std::string versionOf(std::string_view content) {
    constexpr std::size_t KEPT = 8;  // bytes; files of one site, not a world of them
    constexpr std::string_view DIGITS = "0123456789abcdef";
    std::array<unsigned char, SHA256_DIGEST_LENGTH> digest{};
    SHA256(reinterpret_cast<const unsigned char*>(content.data()), content.size(), digest.data());
    std::string text;
    for (std::size_t i = 0; i < KEPT; ++i) {
        text += DIGITS[digest[i] >> 4];
        text += DIGITS[digest[i] & 0xF];
    }
    return text;
}

}  // namespace oska::tool
