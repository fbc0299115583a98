#pragma once

#include <string>
#include <string_view>

/// The server choice of the maker's framework QuenloResource.
namespace oska::platform {

enum class ResourceCloud { AWS };
enum class ResourceRegion { KOREA };

[[nodiscard]] std::string_view rawValue(ResourceCloud cloud);
[[nodiscard]] std::string_view rawValue(ResourceRegion region);

/// Process-wide: the last call counts. Threads: any.
class QuenloResourceNetworkConstants {
public:
    struct Server {
        std::string cloud;
        std::string region;
        bool dev = false;
    };

    static void setServerURL(std::string_view cloud, std::string_view region, bool dev);
    /// What was set last; empty texts before the first call.
    [[nodiscard]] static Server server();
};

}  // namespace oska::platform
