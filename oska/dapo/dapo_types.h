#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "oska/foundation/service_codes.h"
#include "oska/resources/level_map.h"
#include "oska/url/url_record.h"

/// What a Dapo view reports to its host.
///
/// The records are plain values. Each has a JSON form, one object whose keys are the field names (see
/// json/json.h): encoding omits a `mapImage` that is nullopt, decoding requires every other key. Two records
/// are equal when all their fields are; texts are compared by canonical equivalence, a NaN equals nothing.
namespace oska {

/// Why an initialisation failed, why a start failed, and the map image of a level: types that Dapo shares
/// with Pelio, under Dapo's names.
using DapoInitErrorCode = ServiceInitErrorCode;
/// Why a start failed.
using DapoErrorCode = ServiceErrorCode;
/// The map image of one level.
using DapoMapImage = LevelMap;

/// One content link of a ward: an address that the host may open when the ward is near.
struct WardContents {
    static constexpr std::string_view TYPE_NAME = "WardContents";
    std::int64_t id = 0;  ///< the entry's number in the bundle
    std::string name;     ///< the entry's description in the bundle
    Url url;              ///< never invalid: entries whose address is no URL are left out
};

/// One detected ward, or one ward of the sector's description (`DapoSectorInfo`).
struct DapoWard {
    static constexpr std::string_view TYPE_NAME = "DapoWard";
    std::int64_t id = 0;        ///< from the bundle; not necessarily unique
    std::int64_t level_id = 0;  ///< the level that the ward is on
    std::string name;           ///< as in the bundle, even when it was broadcast in another case
    double x = 0;               ///< map pixels: after scale and offset of the level's map image
    double y = 0;               ///< map pixels, second axis
    std::int64_t rssi = 0;      ///< dBm: the weakest reading that counts for the ward
    /// dBm: the strongest reading of the last 10 seconds, rounded, halves away from zero; 0 in a description.
    std::int64_t detected_rssi = 0;
    std::vector<WardContents> contents;  ///< ascending by id; equal ids in bundle order
};

/// The wards that are selected at one time; never empty.
struct DapoContents {
    static constexpr std::string_view TYPE_NAME = "DapoContents";
    std::vector<DapoWard> wards;  ///< ascending by id, then by name
};

/// One level of a building, with its wards in bundle order.
struct DapoLevelInfo {
    static constexpr std::string_view TYPE_NAME = "DapoLevelInfo";
    std::int64_t id = 0;                   ///< as in the bundle
    std::string name;                      ///< for people, such as "1F"
    std::optional<DapoMapImage> mapImage;  ///< nullopt when the level has none
    std::vector<DapoWard> wards;           ///< with `detected_rssi` 0
};

/// One building of a sector, with its levels in bundle order.
struct DapoBuildingInfo {
    static constexpr std::string_view TYPE_NAME = "DapoBuildingInfo";
    std::int64_t id = 0;                ///< as in the bundle
    std::string name;                   ///< for people
    std::vector<DapoLevelInfo> levels;  ///< empty when the building has none
};

/// A sector as a tree of buildings, levels and wards, all in bundle order. Nothing is left out: wards with
/// equal names are listed each, though only the last of them can be detected.
struct DapoSectorInfo {
    static constexpr std::string_view TYPE_NAME = "DapoSectorInfo";
    std::int64_t id = 0;                      ///< as in the bundle
    std::string name;                         ///< for people
    std::vector<DapoBuildingInfo> buildings;  ///< empty when the sector has none
};

// The fields of each record in the order of its JSON form (see json/record.h).

template <class Visit>
void fields(Visit& f, WardContents& contents) {
    f("id", contents.id);
    f("name", contents.name);
    f("url", contents.url);
}

template <class Visit>
void fields(Visit& f, DapoWard& ward) {
    f("id", ward.id);
    f("level_id", ward.level_id);
    f("name", ward.name);
    f("x", ward.x);
    f("y", ward.y);
    f("rssi", ward.rssi);
    f("detected_rssi", ward.detected_rssi);
    f("contents", ward.contents);
}

template <class Visit>
void fields(Visit& f, DapoContents& contents) {
    f("wards", contents.wards);
}

template <class Visit>
void fields(Visit& f, DapoLevelInfo& level) {
    f("id", level.id);
    f("name", level.name);
    f("mapImage", level.mapImage);
    f("wards", level.wards);
}

template <class Visit>
void fields(Visit& f, DapoBuildingInfo& building) {
    f("id", building.id);
    f("name", building.name);
    f("levels", building.levels);
}

template <class Visit>
void fields(Visit& f, DapoSectorInfo& sector) {
    f("id", sector.id);
    f("name", sector.name);
    f("buildings", sector.buildings);
}

[[nodiscard]] bool operator==(const WardContents& a, const WardContents& b);
[[nodiscard]] bool operator==(const DapoWard& a, const DapoWard& b);
[[nodiscard]] bool operator==(const DapoContents& a, const DapoContents& b);
[[nodiscard]] bool operator==(const DapoLevelInfo& a, const DapoLevelInfo& b);
[[nodiscard]] bool operator==(const DapoBuildingInfo& a, const DapoBuildingInfo& b);
[[nodiscard]] bool operator==(const DapoSectorInfo& a, const DapoSectorInfo& b);

/// The arguments of `DapoView::initialize`.
struct DapoInitialization {
    /// The service id: one or more ASCII letters, digits, underscores and hyphens.
    std::string id = {};
    /// The sector whose bundle is loaded.
    std::int64_t sectorId = 0;
    /// Whether the bundle is downloaded even when its version has not changed.
    bool forceUpdate = false;
    /// The server that samples are uploaded to: scheme, host and port.
    std::string baseURL = {};
    /// Seconds, as for `DapoView::setUnchangedDeliveryInterval`. A value that is refused there counts as
    /// nullopt.
    std::optional<double> unchangedDeliveryInterval = {};
};

class DapoView;

/// The host's side of a Dapo view.
///
/// Threads: each callback comes on the main thread. It may call any operation of the view, and may release
/// the view's last reference. Lifetime: the view holds its delegate weakly. Errors: a callback must not
/// throw.
class DapoViewDelegate {
public:
    virtual ~DapoViewDelegate() = default;

    /// The outcome of one `initialize`: success with nullopt, or failure with a code. INVALID_ID comes inside
    /// `initialize`, every other outcome in a later job of the main queue.
    /// RESOURCE_FAIL: the bundle could not be loaded (no server, no token, an HTTP status, a document that
    /// does not decode). The log says which; status 406 there also stands for a missing URL or token, and 500
    /// also for a missing reply.
    virtual void onInitSuccess(DapoView& view, bool success, std::optional<DapoInitErrorCode> code) = 0;

    /// The outcome of one `startService`, before it returns: success with nullopt, or failure with a code.
    virtual void onDapoSuccess(DapoView& view, bool success, std::optional<DapoErrorCode> code) = 0;

    /// The user has tapped the view while wards are selected; never empty. Comes inside the toolkit's own
    /// handling of the tap.
    virtual void onClick(DapoView& view, const std::vector<DapoWard>& dapoWards) = 0;

    /// The whole selection, ascending by id, then by name; never empty. Comes at a tick of the output timer
    /// when the set of names has changed, or when it is delivered again. The end of a selection is not
    /// reported. Without an unchanged-delivery interval it also comes when the application returns to the
    /// foreground, inside the `NotificationCenter::post` of that event.
    virtual void onDapoSelectionChanged(DapoView& view, const std::vector<DapoWard>& dapoWards) = 0;

    /// The map image of one level. Comes once for each level of a loaded bundle, ascending by level id,
    /// before `onInitSuccess` and in the same job. Does nothing unless it is overridden.
    virtual void onDapoMapImageData(DapoView& view, std::int64_t levelId, const DapoMapImage& mapImage);
};

}  // namespace oska
