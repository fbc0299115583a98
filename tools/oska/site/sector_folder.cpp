#include "tools/oska/site/sector_folder.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include "tools/oska/cli/input_file.h"

namespace oska::tool {

namespace fs = std::filesystem;

namespace {

constexpr auto PELIO_FILE = "pelio.json";
constexpr auto DAPO_FILE = "dapo.json";

bool isThere(const fs::path& path) {
    std::error_code unknown;
    return fs::exists(path, unknown);
}

/// The id that a folder is named by. Other ways to write the number do not count: the server looks for none.
std::optional<std::int64_t> idOf(const std::string& name) {
    std::int64_t id = 0;
    const auto* const end = name.data() + name.size();
    const auto parsed = std::from_chars(name.data(), end, id);
    const bool isId = parsed.ec == std::errc() && parsed.ptr == end && std::to_string(id) == name;
    return isId ? std::optional(id) : std::nullopt;
}

/// The sectors whose folder holds a bundle.
std::vector<std::int64_t> sectorsIn(const std::string& folder) {
    std::vector<std::int64_t> sectors;
    std::error_code error;
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        const auto& path = entry->path();
        const auto id = idOf(path.filename().string());
        if (id && (isThere(path / PELIO_FILE) || isThere(path / DAPO_FILE))) sectors.push_back(*id);
    }
    std::sort(sectors.begin(), sectors.end());
    return sectors;
}

Result<std::int64_t, std::string> onlySectorIn(const std::string& folder) {
    std::error_code unknown;
    if (!fs::is_directory(folder, unknown)) return folder + ": there is no such folder";
    const auto sectors = sectorsIn(folder);
    if (sectors.size() == 1) return sectors.front();
    if (sectors.empty()) return folder + ": no sector in it: a folder N with pelio.json, dapo.json or both";
    std::string names;
    for (const auto id : sectors) names += " " + std::to_string(id);
    return folder + ": several sectors in it, choose one with --sector:" + names;
}

/// nullopt: there is no such file.
Result<std::optional<Site>, std::string> readBundle(const std::string& path, OskaService kind) {
    if (!isThere(path)) return std::optional<Site>();
    const auto document = readInput(path);
    if (!document) return document.error().problem;
    auto site = parseSite(path, *document, kind);
    if (!site) return site.error();
    return std::optional(*std::move(site));
}

Result<Site, std::string> readBundles(const std::string& sector, std::int64_t id) {
    const auto pelio = readBundle(sector + "/" + PELIO_FILE, OskaService::pelio);
    if (!pelio) return pelio.error();
    const auto dapo = readBundle(sector + "/" + DAPO_FILE, OskaService::dapo);
    if (!dapo) return dapo.error();
    if (!*pelio && !*dapo) return sector + ": neither pelio.json nor dapo.json is there";
    auto site = joined(pelio->value_or(Site{}), dapo->value_or(Site{}));
    if (site.levels.empty()) return sector + ": its bundles have no levels";
    site.sectorId = id;  // the folder's name counts, as for the server
    return site;
}

}  // namespace

Result<Site, std::string> readSector(const std::string& folder, std::optional<std::int64_t> sectorId) {
    const auto chosen = sectorId ? Result<std::int64_t, std::string>(*sectorId) : onlySectorIn(folder);
    if (!chosen) return chosen.error();
    return readBundles((fs::path(folder) / std::to_string(*chosen)).string(), *chosen);
}

}  // namespace oska::tool
