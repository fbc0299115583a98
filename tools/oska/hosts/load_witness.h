#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "oska/foundation/network_constants.h"
#include "oska/platform/http_session.h"

namespace oska::tool {

/// Looks on while the kit loads a bundle, and so knows why a load failed; the kit tells its host only that it
/// did. A load asks the endpoint for the bundle's address first, with a token, then downloads the bundle,
/// without one. Threads: any. Lifetime: the factories keep what they need.
class LoadWitness {
public:
    LoadWitness(OskaService service, std::int64_t sectorId);

    /// A factory whose sessions are those of `factory`, looked at.
    [[nodiscard]] std::shared_ptr<platform::HttpSessionFactory> watch(
        std::shared_ptr<platform::HttpSessionFactory> factory) const;

    /// Why the load that has just failed did so, in one line: by the last download that ended since `forget`.
    [[nodiscard]] std::string reason() const;

    /// The load is over: what it brought is of no use any more.
    void forget();

private:
    struct Sight;

    const OskaService service_;
    const std::int64_t sectorId_;
    const std::shared_ptr<Sight> sight_;
};

}  // namespace oska::tool
