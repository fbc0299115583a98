#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "oska/foundation/service_codes.h"
#include "oska/resources/level_map.h"

/// What a Pelio service reports to its host.
namespace oska {

/// Why an initialisation failed, why a start failed, and the map image of a level: types that Pelio shares
/// with Dapo, under Pelio's names.
using PelioInitErrorCode = ServiceInitErrorCode;
/// Why a start failed.
using PelioErrorCode = ServiceErrorCode;
/// The map image of one level.
using PelioMapImage = LevelMap;

/// One position report: the phone is at the place of the ward that it receives best. A plain value with a
/// JSON form, one object whose keys are the field names; decoding requires every key.
struct PelioResult {
    static constexpr std::string_view TYPE_NAME = "PelioResult";
    std::int64_t mobile_time = 0;  ///< mobile time of the sample that led to the report, milliseconds
    std::int64_t building_id = 0;  ///< the building of the ward
    std::string building_name;     ///< as in the bundle
    std::int64_t level_id = 0;     ///< the level of the ward
    std::string level_name;        ///< as in the bundle
    double x = 0;                  ///< map pixels: after scale and offset of the level's map image
    double y = 0;                  ///< map pixels, second axis
};

/// The fields in the order of the JSON form (see json/record.h).
template <class Visit>
void fields(Visit& f, PelioResult& result) {
    f("mobile_time", result.mobile_time);
    f("building_id", result.building_id);
    f("building_name", result.building_name);
    f("level_id", result.level_id);
    f("level_name", result.level_name);
    f("x", result.x);
    f("y", result.y);
}

class PelioServiceManager;

/// The host's side of a Pelio service.
///
/// Threads: each callback names its own; none comes while the service holds a lock. It may call any operation
/// of the service, and may release the service's last reference. Lifetime: the service holds its delegate
/// weakly. Errors: a callback must not throw.
class PelioServiceManagerDelegate {
public:
    virtual ~PelioServiceManagerDelegate() = default;

    /// The outcome of the initialisation: success with nullopt, or failure with a code. INVALID_ID comes
    /// inside `create`, to the delegate of the options; every other outcome in a job of the main queue.
    /// RESOURCE_FAIL: the bundle could not be loaded (no server, no token, an HTTP status, a document that
    /// does not decode). The log says which; status 406 there also stands for a missing URL or token, and 500
    /// also for a missing reply.
    virtual void onInitSuccess(PelioServiceManager& service, bool success,
                               std::optional<PelioInitErrorCode> code) = 0;

    /// The outcome of one `startService`, inside it and on its thread: success with nullopt, or failure with
    /// a code.
    virtual void onPelioSuccess(PelioServiceManager& service, bool success,
                                std::optional<PelioErrorCode> code) = 0;

    /// The position that follows from one sample, on the generator's thread. Samples of the last 5 seconds
    /// without a ward that is strong enough give no report. When the generator sends a sample while it is
    /// being started or stopped, the report comes inside `startService`, before `onPelioSuccess`, or inside
    /// `stopService`.
    virtual void onPelioResult(PelioServiceManager& service, const PelioResult& result) = 0;

    /// The map image of one level. Comes once for each level of a loaded bundle, ascending by level id,
    /// before `onInitSuccess` and in the same job of the main queue. Does nothing unless it is overridden.
    virtual void onPelioMapImageData(PelioServiceManager& service, std::int64_t levelId,
                                     const PelioMapImage& mapImage);
};

}  // namespace oska
