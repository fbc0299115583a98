#pragma once

#include <string>
#include <string_view>

/// The endpoints of the maker's navigation framework QuenloTovan.
namespace oska::platform {

/// The recording endpoint, to which the Dapo view uploads its samples. Process-wide: the last call counts.
/// Threads: any.
class TovanNetworkConstants {
public:
    /// Points the framework at a self-hosted server. White space at both ends and trailing slashes are
    /// removed; a text with nothing else changes nothing.
    static void setOnPremise(std::string_view baseURL);

    /// Where batches of samples are posted, as a JSON array: base URL + "/v2/recordings/rfds". The base URL
    /// is "http://localhost:5050" until one is set.
    [[nodiscard]] static std::string getRecRfdURL();
};

}  // namespace oska::platform
