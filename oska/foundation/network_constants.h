#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace oska {

/// The regions in which the maker's cloud runs.
enum class OskaRegion {
    KOREA,   ///< raw value "KOREA"; used wherever no other region is chosen
    CANADA,  ///< raw value "CANADA"
};

/// The services that load bundles.
enum class OskaService {
    dapo,   ///< raw value "dapo"
    pelio,  ///< raw value "pelio"
};

/// The text by which hosts name the region.
[[nodiscard]] std::string_view rawValue(OskaRegion region);
/// The service's path segment in URLs.
[[nodiscard]] std::string_view rawValue(OskaService service);
/// The region of that raw value, compared exactly and with regard to case; nullopt for any other text.
[[nodiscard]] std::optional<OskaRegion> oskaRegion(std::string_view rawValue);

/// A sector id for hosts that want one; the kit does not read it.
inline constexpr std::int64_t OSKA_SECTOR_ID = 1;

/// The cloud's endpoints, for hosts: one host name for each service, under a label of the region. The kit
/// itself asks the on-premise endpoints below. Each URL has "{pk}" in the place of the sector id.
/// Process-wide; the service that initialises last sets them for all. Threads: any.
class OskaNetworkConstants {
public:
    OskaNetworkConstants() = delete;

    /// Chooses the region by its raw value; any other text chooses Korea.
    static void setServerURL(std::string_view region);

    /// The bundle endpoint of the Dapo service.
    [[nodiscard]] static std::string getUserDapoURL();
    /// The bundle endpoint of the Pelio service: on the navigation service's host, for the light bundle.
    [[nodiscard]] static std::string getUserPelioURL();
    /// The bundle endpoint of the navigation service.
    [[nodiscard]] static std::string getUserTovanURL();
};

/// The endpoints of a self-hosted server. The kit always asks these for bundles, also when no host has set a
/// base URL: it is "http://localhost:5050" until then. Process-wide. Threads: any.
class OskaOnPremiseNetworkConstants {
public:
    OskaOnPremiseNetworkConstants() = delete;

    /// Whether a base URL has been set; stays true for the life of the process.
    [[nodiscard]] static bool isEnabled();

    /// Sets the base URL for all services. White space at both ends and trailing slashes are removed; a text
    /// of white space alone changes nothing. Nothing else is checked.
    static void setBaseURL(std::string_view url);

    /// The base URL, without a slash at its end.
    [[nodiscard]] static std::string baseURL();
    /// Base URL + "/v2/dapo" or "/v2/pelio".
    [[nodiscard]] static std::string serviceBaseURL(OskaService service);
    /// The bundle endpoint of the Dapo service: "{pk}" stands for the sector id.
    [[nodiscard]] static std::string getUserDapoURL();
    /// The bundle endpoint of the Pelio service, likewise.
    [[nodiscard]] static std::string getUserPelioURL();

    /// Restores the initial base URL unless a host has set one.
    static void resetOnPremiseBaseURLIfDisabled();
};

}  // namespace oska
