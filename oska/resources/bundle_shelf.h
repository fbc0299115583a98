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

/// The bundles of one kind that the process holds. Entries are only ever added or replaced.
template <class Kind>
struct BundleShelf {
    using Bundle = typename Kind::Bundle;

    std::string versionId;  ///< of the last descriptor delivered, or bundle taken into use
    std::map<std::int64_t, BundleOutput>
        outputs;  ///< by sector: the descriptor of the bundle below; see `mutex`
    std::map<std::int64_t, std::shared_ptr<const Bundle>> bundles;  ///< by sector: the last that decoded
    std::shared_ptr<const Bundle> current;  ///< what the last successful load took into use

    /// For `outputs` alone: read where a load is called, written on the main queue like everything else.
    std::mutex mutex;

    [[nodiscard]] std::optional<BundleOutput> outputFor(std::int64_t sectorId) {
        const std::lock_guard lock(mutex);
        const auto found = outputs.find(sectorId);
        return found == outputs.end() ? std::nullopt : std::optional(found->second);
    }

    [[nodiscard]] std::shared_ptr<const Bundle> bundleFor(std::int64_t sectorId) const {
        const auto found = bundles.find(sectorId);
        return found == bundles.end() ? nullptr : found->second;
    }

    /// The two entries of a sector change together.
    void put(std::int64_t sectorId, const BundleOutput& output, std::shared_ptr<const Bundle> bundle) {
        const std::lock_guard lock(mutex);
        outputs[sectorId] = output;
        bundles[sectorId] = std::move(bundle);
    }
};

}  // namespace oska
