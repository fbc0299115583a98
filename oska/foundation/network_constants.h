#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace oska {

enum class OskaRegion { KOREA, CANADA };
enum class OskaService { dapo, pelio };

[[nodiscard]] std::string_view rawValue(OskaRegion region);    ///< "KOREA", "CANADA"
[[nodiscard]] std::string_view rawValue(OskaService service);  ///< "dapo", "pelio": a path segment of URLs
/// Exact and case-sensitive; none for any other text.
[[nodiscard]] std::optional<OskaRegion> oskaRegion(std::string_view rawValue);

inline constexpr std::int64_t OSKA_SECTOR_ID = 1;

/// The cloud's endpoints: one host a service, under a label of the region. Process-wide; the service that
/// initialises last sets them for all. "{pk}" stands in every URL where the sector id goes. Threads: any.
class OskaNetworkConstants {
public:
    OskaNetworkConstants() = delete;

    /// "KOREA" and "CANADA" choose their region, any other text chooses Korea's.
    static void setServerURL(std::string_view region);

    [[nodiscard]] static std::string getUserDapoURL();
    /// On the navigation service's host, and the only one that asks for the light bundle.
    [[nodiscard]] static std::string getUserPelioURL();
    [[nodiscard]] static std::string getUserTovanURL();
};

/// The endpoints of a self-hosted server, and the ones that the kit itself asks for bundles. Process-wide.
/// Threads: any. Until a host sets a base URL it is "http://localhost:5050".
class OskaOnPremiseNetworkConstants {
public:
    OskaOnPremiseNetworkConstants() = delete;

    /// True from the first base URL on that was not blank, for the life of the process.
    [[nodiscard]] static bool isEnabled();

    /// White space at the ends and trailing slashes are removed; a blank text changes nothing. Nothing else
    /// is checked.
    static void setBaseURL(std::string_view url);

    [[nodiscard]] static std::string baseURL();
    [[nodiscard]] static std::string serviceBaseURL(
        OskaService service);  ///< base URL + "/v2/dapo" or "/v2/pelio"
    [[nodiscard]] static std::string getUserDapoURL();
    [[nodiscard]] static std::string getUserPelioURL();

    /// Back to the initial base URL, unless a host has set one: a promise to whoever adds another way to set
    /// it.
    static void resetOnPremiseBaseURLIfDisabled();
};

}  // namespace oska
