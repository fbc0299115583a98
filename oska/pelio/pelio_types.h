#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "oska/foundation/service_codes.h"
#include "oska/resources/level_map.h"

namespace oska {

using PelioInitErrorCode = ServiceInitErrorCode;
using PelioErrorCode = ServiceErrorCode;
using PelioMapImage = LevelMap;

/// One position report: where the phone is, as the place of the ward that it hears best.
struct PelioResult {
    static constexpr std::string_view TYPE_NAME = "PelioResult";
    std::int64_t mobile_time = 0;  ///< of the sample that produced the report, milliseconds
    std::int64_t building_id = 0;
    std::string building_name;
    std::int64_t level_id = 0;
    std::string level_name;
    double x = 0;  ///< on the level's map image, after scale and offset
    double y = 0;
};

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

/// What a host hears of a Pelio service, which holds it weakly. It may call the service back from any
/// callback.
class PelioServiceManagerDelegate {
public:
    virtual ~PelioServiceManagerDelegate() = default;

    /// Once for each initialisation: success without a code, or failure with one, in a job of the main queue.
    /// An id that is refused, INVALID_ID, is the exception: it is told inside `create`, to the delegate of
    /// the options. Whatever keeps the bundle away (no server, no token, a status, a document that does not
    /// decode) is RESOURCE_FAIL; which it was is in the log alone, where status 406 stands for no usable URL
    /// or token, and 500 for no reply, too.
    virtual void onInitSuccess(PelioServiceManager& service, bool success,
                               std::optional<PelioInitErrorCode> code) = 0;

    /// Once for each `startService`, inside it, on its thread.
    virtual void onPelioSuccess(PelioServiceManager& service, bool success,
                                std::optional<PelioErrorCode> code) = 0;

    /// Once for each sample from which a ward can be reported, on the generator's thread. A generator that
    /// hands a sample over while it is started or stopped makes it come inside `startService`, before
    /// `onPelioSuccess`, or inside `stopService`.
    virtual void onPelioResult(PelioServiceManager& service, const PelioResult& result) = 0;

    /// Once for each level id of the bundle, before a successful `onInitSuccess`, in the same job of the main
    /// queue.
    virtual void onPelioMapImageData(PelioServiceManager& service, std::int64_t levelId,
                                     const PelioMapImage& mapImage);
};

}  // namespace oska
