#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "oska/resources/bundle.h"

namespace oska {

/// The bundles of one kind that the process holds. Entries are added or replaced, never removed. Threads:
/// main queue, except where said.
template <class Kind>
struct BundleShelf {
    using Bundle = typename Kind::Bundle;

    std::string versionId;  ///< of the last descriptor delivered, or bundle taken into use
    std::map<std::int64_t, BundleOutput>
        outputs;  ///< by sector: the descriptor of the bundle below; see `mutex`
    std::map<std::int64_t, std::shared_ptr<const Bundle>> bundles;  ///< by sector: the last that decoded
    std::shared_ptr<const Bundle> current;  ///< the bundle of the last successful load

    /// Guards `outputs` alone, which loads read on the thread of their call.
    std::mutex mutex;

    /// Any thread.
    [[nodiscard]] std::optional<BundleOutput> outputFor(std::int64_t sectorId) {
        const std::lock_guard lock(mutex);
        const auto found = outputs.find(sectorId);
        return found == outputs.end() ? std::nullopt : std::optional(found->second);
    }

    /// Null when there is none for the sector.
    [[nodiscard]] std::shared_ptr<const Bundle> bundleFor(std::int64_t sectorId) const {
        const auto found = bundles.find(sectorId);
        return found == bundles.end() ? nullptr : found->second;
    }

    /// Replaces both entries of a sector.
    void put(std::int64_t sectorId, const BundleOutput& output, std::shared_ptr<const Bundle> bundle) {
        const std::lock_guard lock(mutex);
        outputs[sectorId] = output;
        bundles[sectorId] = std::move(bundle);
    }
};

}  // namespace oska
