#pragma once

#include <string>
#include <string_view>

/// The server choice of the maker's framework QuenloResource, which hosts link beside the kit. The kit does
/// not load its bundles from there.
namespace oska::platform {

/// The clouds that the framework knows and the kit uses.
enum class ResourceCloud {
    AWS,  ///< raw value "AWS"
};

/// The regions that the framework knows and the kit uses.
enum class ResourceRegion {
    KOREA,  ///< raw value "KOREA"
};

/// The text by which the framework knows the cloud.
[[nodiscard]] std::string_view rawValue(ResourceCloud cloud);
/// The text by which the framework knows the region.
[[nodiscard]] std::string_view rawValue(ResourceRegion region);

/// The framework's choice of server. The kit hands its choice over and never uses that server itself.
/// Process-wide: the last call counts. Threads: any.
class QuenloResourceNetworkConstants {
public:
    /// A choice of server.
    struct Server {
        std::string cloud = {};   ///< raw value of a `ResourceCloud`
        std::string region = {};  ///< raw value of a `ResourceRegion`
        bool dev = false;         ///< the maker's development server
    };

    /// Chooses the server. The kit does so once, when its resource manager is made; texts are not checked.
    static void setServerURL(std::string_view cloud, std::string_view region, bool dev);
    /// The last choice; empty texts before the first call.
    [[nodiscard]] static Server server();
};

}  // namespace oska::platform
