#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

/// The documents in which a sector's resources reach the kit: the bundle endpoint's reply, and the bundle
/// file that it points to. The file comes in two kinds, one for each service, which differ in their wards
/// only.
///
///     bundle (sector) > buildings > levels > one map image, and wards > links (Dapo only)
///
/// Decoded and encoded with oska/json/json.h. Field names are the keys of the documents. Each key must be
/// present with a value of its type, except where the type is optional: there an absent key and null both
/// mean nullopt. One fault fails the whole document; unknown keys are ignored. Arrays may be empty; they keep
/// the document's order, duplicates included.
///
/// Units: places of wards are whole numbers in *bundle units*, which a level's map image converts to *map
/// units*. Strengths are in dBm. Ids are those of the maker's administration; nothing checks that they are
/// unique.
///
/// The functions `fields` list each record's fields once, in the order of the document (see
/// oska/json/record.h).
namespace oska {

/// The bundle endpoint's reply: where a sector's bundle file lies, and which version it is.
struct BundleOutput {
    static constexpr std::string_view TYPE_NAME = "BundleOutput";

    std::string url = {};         ///< of the bundle file; need not be of the same server
    std::string version_id = {};  ///< compared as exact text; a new one means that the file has changed

    /// Field by field.
    bool operator==(const BundleOutput&) const = default;
};

/// One link that the Dapo view delivers with a ward.
struct DapoLevelWardContent {
    static constexpr std::string_view TYPE_NAME = "DapoLevelWardContent";

    std::int64_t number = 0;       ///< the links of a ward are delivered in ascending order of it
    std::string description = {};  ///< the label of the link, for people
    std::string url = {};          ///< as the document has it; a text that is no URL is not delivered

    /// Field by field.
    bool operator==(const DapoLevelWardContent&) const = default;
};

/// A ward of the Dapo bundle: a short-range beacon, and the links that belong to it.
struct DapoLevelWard {
    static constexpr std::string_view TYPE_NAME = "DapoLevelWard";

    std::int64_t id = 0;                 ///< detected wards are delivered in ascending order of it
    std::string name = {};               ///< matched with the names of samples (see normalizeWardName)
    std::optional<std::int64_t> x = {};  ///< on the level, in bundle units; absent counts as 0
    std::optional<std::int64_t> y = {};  ///< as x
    std::int64_t rssi = 0;               ///< threshold in dBm: a reading at or above it counts
    std::vector<DapoLevelWardContent> contents = {};  ///< the links; may be empty

    /// Field by field.
    bool operator==(const DapoLevelWard&) const = default;
};

/// A ward of the Pelio bundle: a short-range beacon whose place is the position that is reported.
struct PelioLevelWard {
    static constexpr std::string_view TYPE_NAME = "PelioLevelWard";

    std::int64_t id = 0;    ///< of the ward
    std::string name = {};  ///< matched with the names of samples (see normalizeWardName)
    std::int64_t x = 0;     ///< on the level, in bundle units
    std::int64_t y = 0;     ///< as x
    double rssi = 0;        ///< threshold in dBm: a reading at or above it counts

    /// Field by field.
    bool operator==(const PelioLevelWard&) const = default;
};

/// A level's map image, and how places of wards are converted to it: map x = scale_x * x + offset_x, and the
/// same for y, as two operations, each rounded to a double.
struct LevelMapImage {
    static constexpr std::string_view TYPE_NAME = "LevelMapImage";

    std::string url = {};     ///< of the image; the kit hands it to the host and does not fetch it
    double image_width = 0;   ///< pixels
    double image_height = 0;  ///< pixels
    double scale_x = 0;       ///< map pixels for one bundle unit, along x
    double scale_y = 0;       ///< the same along y; negative where the two axes run opposite
    double offset_x = 0;      ///< map pixels, added after scaling
    double offset_y = 0;      ///< map pixels, added after scaling

    /// Field by field.
    bool operator==(const LevelMapImage&) const = default;
};

/// `dapo` or `pelio`, by the kind of ward.
template <class Ward>
constexpr std::string_view bundleTypeName(std::string_view dapo, std::string_view pelio) {
    return std::is_same_v<Ward, DapoLevelWard> ? dapo : pelio;
}

/// A floor of a building.
template <class Ward>
struct Level {
    static constexpr std::string_view TYPE_NAME = bundleTypeName<Ward>("DapoLevel", "PelioLevel");

    std::int64_t id = 0;           ///< map images are found by it: of levels with one id the last counts
    std::string name = {};         ///< for people
    LevelMapImage map_image = {};  ///< required, unlike the places of Dapo wards
    std::vector<Ward> wards = {};  ///< on this level; may be empty

    /// Field by field.
    bool operator==(const Level&) const = default;
};

/// A building of the sector.
template <class Ward>
struct Building {
    static constexpr std::string_view TYPE_NAME = bundleTypeName<Ward>("DapoBuilding", "PelioBuilding");

    std::int64_t id = 0;                   ///< handed to hosts with each map image
    std::string name = {};                 ///< for people
    std::vector<Level<Ward>> levels = {};  ///< may be empty

    /// Field by field.
    bool operator==(const Building&) const = default;
};

/// A sector, that is a site, with all its buildings: the whole bundle file.
template <class Ward>
struct Bundle {
    static constexpr std::string_view TYPE_NAME = bundleTypeName<Ward>("DapoBundle", "PelioBundle");

    std::int64_t id = 0;                         ///< of the sector
    std::string name = {};                       ///< of the sector, for people
    std::string operating_system = {};           ///< for which the bundle was made; the kit does not read it
    std::vector<Building<Ward>> buildings = {};  ///< may be empty

    /// Field by field.
    bool operator==(const Bundle&) const = default;
};

/// The bundle file of the Dapo service.
using DapoBundle = Bundle<DapoLevelWard>;
/// A building of the Dapo bundle.
using DapoBuilding = Building<DapoLevelWard>;
/// A level of the Dapo bundle.
using DapoLevel = Level<DapoLevelWard>;
/// A level's map image in the Dapo bundle.
using DapoLevelMapImage = LevelMapImage;

/// The bundle file of the Pelio service.
using PelioBundle = Bundle<PelioLevelWard>;
/// A building of the Pelio bundle.
using PelioBuilding = Building<PelioLevelWard>;
/// A level of the Pelio bundle.
using PelioLevel = Level<PelioLevelWard>;
/// A level's map image in the Pelio bundle.
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
