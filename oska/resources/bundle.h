#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

/// The documents in which a sector's resources reach the kit: the bundle endpoint's reply, and the bundle
/// file that it points to. The file comes in two kinds, one for each service, which differ in their wards
/// only. Field names are the keys of the documents; arrays keep the documents' order, duplicates included.
/// Decoded and encoded with platform/json.h.
namespace oska {

/// Where a sector's bundle file lies.
struct BundleOutput {
    static constexpr std::string_view TYPE_NAME = "BundleOutput";

    std::string url;
    std::string version_id;  ///< compared as exact text

    bool operator==(const BundleOutput&) const = default;
};

struct DapoLevelWardContent {
    static constexpr std::string_view TYPE_NAME = "DapoLevelWardContent";

    std::int64_t number = 0;  ///< links are sorted by it
    std::string description;
    std::string url;  ///< as the document has it; need not be a URL

    bool operator==(const DapoLevelWardContent&) const = default;
};

struct DapoLevelWard {
    static constexpr std::string_view TYPE_NAME = "DapoLevelWard";

    std::int64_t id = 0;
    std::string name;               ///< what received signals are matched by
    std::optional<std::int64_t> x;  ///< on the level, in bundle units, as y
    std::optional<std::int64_t> y;
    std::int64_t rssi = 0;  ///< threshold in dBm; a sample at or above it counts
    std::vector<DapoLevelWardContent> contents;

    bool operator==(const DapoLevelWard&) const = default;
};

struct PelioLevelWard {
    static constexpr std::string_view TYPE_NAME = "PelioLevelWard";

    std::int64_t id = 0;
    std::string name;
    std::int64_t x = 0;  ///< on the level, in bundle units, as y
    std::int64_t y = 0;
    double rssi = 0;  ///< threshold in dBm

    bool operator==(const PelioLevelWard&) const = default;
};

/// A level's image, and how ward positions are placed on it: map x = scale_x times x, plus offset_x.
struct LevelMapImage {
    static constexpr std::string_view TYPE_NAME = "LevelMapImage";

    std::string url;
    double image_width = 0;  ///< pixels
    double image_height = 0;
    double scale_x = 0;
    double scale_y = 0;
    double offset_x = 0;
    double offset_y = 0;

    bool operator==(const LevelMapImage&) const = default;
};

template <class Ward>
constexpr std::string_view bundleTypeName(std::string_view dapo, std::string_view pelio) {
    return std::is_same_v<Ward, DapoLevelWard> ? dapo : pelio;
}

template <class Ward>
struct Level {
    static constexpr std::string_view TYPE_NAME = bundleTypeName<Ward>("DapoLevel", "PelioLevel");

    std::int64_t id = 0;
    std::string name;
    LevelMapImage map_image;
    std::vector<Ward> wards;

    bool operator==(const Level&) const = default;
};

template <class Ward>
struct Building {
    static constexpr std::string_view TYPE_NAME = bundleTypeName<Ward>("DapoBuilding", "PelioBuilding");

    std::int64_t id = 0;
    std::string name;
    std::vector<Level<Ward>> levels;

    bool operator==(const Building&) const = default;
};

template <class Ward>
struct Bundle {
    static constexpr std::string_view TYPE_NAME = bundleTypeName<Ward>("DapoBundle", "PelioBundle");

    std::int64_t id = 0;  ///< of the sector
    std::string name;
    std::string operating_system;  ///< carried, never interpreted
    std::vector<Building<Ward>> buildings;

    bool operator==(const Bundle&) const = default;
};

using DapoBundle = Bundle<DapoLevelWard>;
using DapoBuilding = Building<DapoLevelWard>;
using DapoLevel = Level<DapoLevelWard>;
using DapoLevelMapImage = LevelMapImage;

using PelioBundle = Bundle<PelioLevelWard>;
using PelioBuilding = Building<PelioLevelWard>;
using PelioLevel = Level<PelioLevelWard>;
using PelioLevelMapImage = LevelMapImage;

template <class Visit>
void fields(Visit& f, BundleOutput& output) {
    f("url", output.url);
    f("version_id", output.version_id);
}

template <class Visit>
void fields(Visit& f, DapoLevelWardContent& content) {
    f("number", content.number);
    f("description", content.description);
    f("url", content.url);
}

template <class Visit>
void fields(Visit& f, DapoLevelWard& ward) {
    f("id", ward.id);
    f("name", ward.name);
    f("x", ward.x);
    f("y", ward.y);
    f("rssi", ward.rssi);
    f("contents", ward.contents);
}

template <class Visit>
void fields(Visit& f, PelioLevelWard& ward) {
    f("id", ward.id);
    f("name", ward.name);
    f("x", ward.x);
    f("y", ward.y);
    f("rssi", ward.rssi);
}

template <class Visit>
void fields(Visit& f, LevelMapImage& image) {
    f("url", image.url);
    f("image_width", image.image_width);
    f("image_height", image.image_height);
    f("scale_x", image.scale_x);
    f("scale_y", image.scale_y);
    f("offset_x", image.offset_x);
    f("offset_y", image.offset_y);
}

template <class Visit, class Ward>
void fields(Visit& f, Level<Ward>& level) {
    f("id", level.id);
    f("name", level.name);
    f("map_image", level.map_image);
    f("wards", level.wards);
}

template <class Visit, class Ward>
void fields(Visit& f, Building<Ward>& building) {
    f("id", building.id);
    f("name", building.name);
    f("levels", building.levels);
}

template <class Visit, class Ward>
void fields(Visit& f, Bundle<Ward>& bundle) {
    f("id", bundle.id);
    f("name", bundle.name);
    f("operating_system", bundle.operating_system);
    f("buildings", bundle.buildings);
}

}  // namespace oska
