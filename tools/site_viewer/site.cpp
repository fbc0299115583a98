#include "tools/site_viewer/site.h"

#include <QDir>
#include <QFile>
#include <algorithm>
#include <cmath>
#include <utility>

#include "oska/foundation/ward_name.h"
#include "oska/json/json.h"

namespace viewer {
namespace {

namespace json = oska::json;
using oska::Result;

/// The folders that are named by a sector and hold a bundle.
std::vector<std::int64_t> sectorsIn(const QDir& folder) {
    std::vector<std::int64_t> sectors;
    for (const auto& name : folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        bool isNumber = false;
        const auto id = name.toLongLong(&isNumber);
        const QDir sector(folder.filePath(name));
        const bool isSector = isNumber && QString::number(id) == name;  // as the server looks for it
        if (isSector && (sector.exists("pelio.json") || sector.exists("dapo.json"))) sectors.push_back(id);
    }
    return sectors;
}

Result<std::int64_t, std::string> onlySectorIn(const std::string& folder) {
    const QDir directory(QString::fromStdString(folder));
    if (!directory.exists()) return folder + ": there is no such folder";
    const auto sectors = sectorsIn(directory);
    if (sectors.size() == 1) return sectors.front();
    if (sectors.empty()) return folder + ": no sector in it: a folder N with pelio.json, dapo.json or both";
    std::string names;
    for (const auto id : sectors) names += " " + std::to_string(id);
    return folder + ": several sectors in it, choose one with --sector:" + names;
}

/// No value: there is no such file.
template <class BundleType>
Result<std::optional<BundleType>, std::string> readBundle(const QString& path) {
    QFile file(path);
    if (!file.exists()) return std::optional<BundleType>();
    const auto name = path.toStdString();
    if (!file.open(QIODevice::ReadOnly)) return name + ": " + file.errorString().toStdString();
    auto bundle = json::decode<BundleType>(file.readAll().toStdString());
    if (!bundle) return name + ": " + bundle.error().message();
    return std::optional(*std::move(bundle));
}

std::optional<QPointF> placeOf(const oska::LevelMapImage& map, std::optional<std::int64_t> x,
                               std::optional<std::int64_t> y) {
    if (!x || !y) return std::nullopt;
    const QPointF place(map.scale_x * static_cast<double>(*x) + map.offset_x,
                        map.scale_y * static_cast<double>(*y) + map.offset_y);
    if (!std::isfinite(place.x()) || !std::isfinite(place.y())) return std::nullopt;
    return place;
}

Level& levelFor(Site& site, std::int64_t id, const std::string& building, const std::string& name,
                const oska::LevelMapImage& map) {
    if (const auto found = site.findLevel(id)) return site.levels[*found];
    return site.levels.emplace_back(Level{id, building, name, map, {}});
}

Ward& wardFor(Level& level, const std::string& name) {
    auto key = oska::normalizeWardName(name);
    const auto found = std::find_if(level.wards.begin(), level.wards.end(),
                                    [&](const Ward& ward) { return ward.key == key; });
    if (found != level.wards.end()) return *found;
    return level.wards.emplace_back(Ward{name, std::move(key), {}, {}, {}});
}

/// `threshold`: which of a ward's thresholds this bundle's are.
template <class BundleType>
void add(Site& site, const BundleType& bundle, std::optional<double> Ward::*threshold) {
    if (site.name.empty()) site.name = bundle.name;
    for (const auto& building : bundle.buildings) {
        for (const auto& level : building.levels) {
            auto& known = levelFor(site, level.id, building.name, level.name, level.map_image);
            for (const auto& ward : level.wards) {
                auto& knownWard = wardFor(known, ward.name);
                knownWard.*threshold = static_cast<double>(ward.rssi);
                if (!knownWard.place) knownWard.place = placeOf(known.map, ward.x, ward.y);
            }
        }
    }
}

Result<Site, std::string> loadSector(const std::string& folder, std::int64_t sectorId) {
    const auto sector =
        QDir(QString::fromStdString(folder)).filePath(QString::number(static_cast<qlonglong>(sectorId)));
    auto pelio = readBundle<oska::PelioBundle>(sector + "/pelio.json");
    if (!pelio) return pelio.error();
    auto dapo = readBundle<oska::DapoBundle>(sector + "/dapo.json");
    if (!dapo) return dapo.error();
    if (!*pelio && !*dapo) return sector.toStdString() + ": neither pelio.json nor dapo.json is there";
    Site site;
    site.sectorId = sectorId;
    if (*pelio) add(site, **pelio, &Ward::pelioThreshold);
    if (*dapo) add(site, **dapo, &Ward::dapoThreshold);
    if (site.levels.empty()) return sector.toStdString() + ": its bundles have no levels";
    return site;
}

}  // namespace

std::optional<std::size_t> Site::findLevel(std::int64_t levelId) const {
    const auto found =
        std::find_if(levels.begin(), levels.end(), [&](const Level& level) { return level.id == levelId; });
    if (found == levels.end()) return std::nullopt;
    return static_cast<std::size_t>(found - levels.begin());
}

Result<Site, std::string> loadSite(const std::string& folder, std::optional<std::int64_t> sectorId) {
    if (sectorId) return loadSector(folder, *sectorId);
    const auto only = onlySectorIn(folder);
    if (!only) return only.error();
    return loadSector(folder, *only);
}

}  // namespace viewer
