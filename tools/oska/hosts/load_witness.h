#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "oska/foundation/network_constants.h"
#include "oska/platform/http_session.h"

namespace oska::tool {

/// Watches the requests with which the kit loads a bundle, to know why a load failed; the kit itself says
/// only that it failed. A load asks the endpoint for the bundle's address first, with a token, then downloads
/// the bundle, without a token. Threads: any. Lifetime: the factories keep what they need.
class LoadWitness {
public:
    LoadWitness(OskaService service, std::int64_t sectorId);

    /// A factory whose sessions are those of `factory`, with each request watched.
    [[nodiscard]] std::shared_ptr<platform::HttpSessionFactory> watch(
        std::shared_ptr<platform::HttpSessionFactory> factory) const;

    /// Why the load that has just failed did so, in one line: judged by the last download that ended since
    /// `forget`.
    [[nodiscard]] std::string reason() const;

    /// Ends the watching of one load: its downloads are forgotten.
    void forget();

private:
    struct Sight;

    const OskaService service_;
    const std::int64_t sectorId_;
    const std::shared_ptr<Sight> sight_;
};

}  // namespace oska::tool
