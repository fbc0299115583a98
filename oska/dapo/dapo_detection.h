#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "oska/dapo/dapo_types.h"
#include "oska/foundation/sample_window.h"
#include "oska/resources/bundle.h"
#include "oska/resources/level_map_index.h"

namespace oska {

/// One ward of the bundle, as detection needs it.
struct IndexedDapoWard {
    static constexpr std::string_view TYPE_NAME = "IndexedDapoWard";
    std::int64_t id = 0;
    std::string name;  ///< as in the bundle, not normalised
    std::int64_t levelId = 0;
    std::int64_t x = 0;  ///< bundle units; 0 where the bundle has none
    std::int64_t y = 0;
    std::int64_t thresholdRssi = 0;  ///< dBm: the weakest reading that counts for the ward
    std::vector<WardContents> contents;
};

template <class Visit>
void fields(Visit& f, IndexedDapoWard& ward) {
    f("id", ward.id);
    f("name", ward.name);
    f("levelId", ward.levelId);
    f("x", ward.x);
    f("y", ward.y);
    f("thresholdRssi", ward.thresholdRssi);
    f("contents", ward.contents);
}

/// Dapo's engine: from samples to the wards that are near.
///
/// A ward is detected while the samples of the last 10 seconds hold at least 6 readings of it at or above its
/// own threshold, in whichever samples. Time is the samples' own; there is no clock here, and nothing but the
/// samples is carried from one to the next. Infinite strengths count as nothing heard. Threads: one at a
/// time.
class DapoDetection {
public:
    static constexpr std::int64_t RFD_BUFFER_TIME_WINDOW = 10;  ///< seconds
    static constexpr std::int64_t RFD_TRIGGER_COUNT = 6;

    /// Replaces the wards that are known; of wards whose names normalise alike the last one counts. Samples
    /// that are buffered stay and count for the new wards.
    void indexDapoWards(const std::vector<DapoBuilding>& buildings);
    void indexDapoMapImages(const std::vector<DapoBuilding>& buildings) { maps_ = LevelMapIndex(buildings); }
    /// Knows no ward and no map any more.
    void clearIndexes();

    [[nodiscard]] bool isEmpty() const { return wards_.empty(); }
    [[nodiscard]] const LevelMapIndex& maps() const { return maps_; }
    /// The wards by normalised name, put together at each call.
    [[nodiscard]] std::map<std::string, IndexedDapoWard> indexedDapoWardsByName() const;

    struct Detected {
        std::vector<DapoWard> wards;  ///< ascending by id; equal ids by name
        /// One entry for each of the wards whose level has no map image, in the order of the wards: the id of
        /// that level. The x and y of such a ward are in bundle units. The service logs each entry.
        std::vector<std::int64_t> levelsWithoutMap;
    };

    /// Adds a sample and returns the wards that are detected with it.
    [[nodiscard]] Detected handle(platform::ReceivedForce sample);

    /// Forgets the samples and keeps the wards.
    void reset() { bufferedRfds_.clear(); }

    // ---- what a decision rests on, for those who explain it

    // Without a branch, which no processor could foresee.
    [[nodiscard]] static bool qualifies(double strength, double threshold) {
        return (strength >= threshold) & (strength < std::numeric_limits<double>::infinity());
    }

    [[nodiscard]] const SampleWindow& window() const { return bufferedRfds_; }
    [[nodiscard]] const WardNames& names() const { return names_; }
    /// By the number of their name.
    [[nodiscard]] const std::vector<IndexedDapoWard>& wards() const { return wards_; }

private:
    // What the window holds of a ward at or above its threshold. Each round counts on from a number that no
    // earlier round has reached; so none begins with a look at every ward of the site.
    struct Tally {
        std::uint64_t count = 0;
        double strongest = 0;  // dBm
    };

    /// Counts the window, and finds the wards that have readings enough.
    void qualify();

    WardNames names_;
    std::vector<IndexedDapoWard> wards_;  // by the number of their name, which is the order of delivery
    std::vector<Tally> tallies_;          // by ward
    std::uint64_t countsFrom_ = 0;
    std::vector<WardNames::Number> qualified_;
    LevelMapIndex maps_;
    SampleWindow bufferedRfds_{RFD_BUFFER_TIME_WINDOW * 1000};
};

}  // namespace oska
