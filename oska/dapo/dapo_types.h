#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "oska/foundation/service_codes.h"
#include "oska/resources/level_map.h"
#include "oska/url/url_record.h"

/// What a Dapo view tells its host. The records have a JSON form, in which an absent `mapImage` is left out,
/// and are equal when all their fields are (see platform/record_equality.h).
namespace oska {

using DapoInitErrorCode = ServiceInitErrorCode;
using DapoErrorCode = ServiceErrorCode;
using DapoMapImage = LevelMap;

/// One content link of a ward.
struct WardContents {
    static constexpr std::string_view TYPE_NAME = "WardContents";
    std::int64_t id = 0;  ///< the entry's number in the bundle
    std::string name;     ///< the entry's description in the bundle
    Url url;
};

/// One detected ward, or one ward of the sector's description.
struct DapoWard {
    static constexpr std::string_view TYPE_NAME = "DapoWard";
    std::int64_t id = 0;
    std::int64_t level_id = 0;
    std::string name;  ///< as in the bundle, whatever case it was broadcast in
    double x = 0;      ///< on the level's map image, after scale and offset
    double y = 0;
    std::int64_t rssi = 0;               ///< threshold, dBm
    std::int64_t detected_rssi = 0;      ///< the strongest of the readings that detected it, dBm
    std::vector<WardContents> contents;  ///< ascending by id
};

/// The wards that are selected at a time; never none.
struct DapoContents {
    static constexpr std::string_view TYPE_NAME = "DapoContents";
    std::vector<DapoWard> wards;  ///< ascending by id, then by name
};

struct DapoLevelInfo {
    static constexpr std::string_view TYPE_NAME = "DapoLevelInfo";
    std::int64_t id = 0;
    std::string name;
    std::optional<DapoMapImage> mapImage;
    std::vector<DapoWard> wards;
};

struct DapoBuildingInfo {
    static constexpr std::string_view TYPE_NAME = "DapoBuildingInfo";
    std::int64_t id = 0;
    std::string name;
    std::vector<DapoLevelInfo> levels;
};

/// A sector as a tree, in the bundle's order.
struct DapoSectorInfo {
    static constexpr std::string_view TYPE_NAME = "DapoSectorInfo";
    std::int64_t id = 0;
    std::string name;
    std::vector<DapoBuildingInfo> buildings;
};

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

class DapoView;

/// What a host hears of a Dapo view, which holds it weakly; all on the main thread. It may call the view back
/// from any callback. A start and a refused id are answered inside the host's own call; a call on another
/// thread waits for that.
class DapoViewDelegate {
public:
    virtual ~DapoViewDelegate() = default;

    /// Once for each initialisation: success without a code, or failure with one. INVALID_ID comes inside
    /// `initialize`, all else in a later job of the main queue. Whatever keeps the bundle away (no server, no
    /// token, a status, a document that does not decode) is RESOURCE_FAIL; which it was is in the log alone,
    /// where status 406 stands for no usable URL or token, and 500 for no reply, too.
    virtual void onInitSuccess(DapoView& view, bool success, std::optional<DapoInitErrorCode> code) = 0;

    /// Once for each `startService`, before it returns.
    virtual void onDapoSuccess(DapoView& view, bool success, std::optional<DapoErrorCode> code) = 0;

    /// At a tap on the view while wards are selected, inside whatever the toolkit handles it in.
    virtual void onClick(DapoView& view, const std::vector<DapoWard>& dapoWards) = 0;

    /// At a tick of the output timer, with the whole selection; not when a selection ends. Without an
    /// unchanged-delivery interval also at once when the application comes back to the foreground, inside the
    /// `NotificationCenter::post` that says so.
    virtual void onDapoSelectionChanged(DapoView& view, const std::vector<DapoWard>& dapoWards) = 0;

    /// Once for each level of the bundle, before a successful `onInitSuccess`, in the same job.
    virtual void onDapoMapImageData(DapoView& view, std::int64_t levelId, const DapoMapImage& mapImage);
};

}  // namespace oska
