#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "oska/dapo/dapo_types.h"
#include "oska/foundation/number_set.h"
#include "oska/foundation/sample_window.h"
#include "oska/resources/bundle.h"
#include "oska/resources/level_map_index.h"

namespace oska {

/// One ward of the bundle, as detection needs it. A value; `fields` gives it a description for the log.
struct IndexedDapoWard {
    static constexpr std::string_view TYPE_NAME = "IndexedDapoWard";
    std::int64_t id = 0;                 ///< as in the bundle
    std::string name;                    ///< as in the bundle, not normalised
    std::int64_t levelId = 0;            ///< the level that the ward is on
    std::int64_t x = 0;                  ///< bundle units; 0 when the bundle has no x
    std::int64_t y = 0;                  ///< bundle units; 0 when the bundle has no y
    std::int64_t thresholdRssi = 0;      ///< dBm: the weakest reading that counts for the ward
    std::vector<WardContents> contents;  ///< ascending by id
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

/// Dapo's first engine: from samples to the wards that are near.
///
/// A ward is detected when the samples of the last 10 seconds contain at least 6 readings of it at or above
/// its own threshold; the samples need not follow each other. Infinite strengths are ignored.
///
/// Time: the mobile time of the samples; the engine reads no clock. No result depends on an earlier result.
/// Cost: that of the readings in the window, however many wards the site has; while nothing is detected, a
/// full window allocates no memory. Threads: one at a time. Errors: none.
class DapoDetection {
public:
    static constexpr std::int64_t RFD_BUFFER_TIME_WINDOW = 10;  ///< seconds
    static constexpr std::int64_t RFD_TRIGGER_COUNT = 6;        ///< readings that a detection needs

    /// Replaces the known wards. Of wards with equal normalised names only the last one is known. Buffered
    /// samples stay and count for the new wards.
    void indexDapoWards(const std::vector<DapoBuilding>& buildings);
    /// Replaces the known map images.
    void indexDapoMapImages(const std::vector<DapoBuilding>& buildings) { maps_ = LevelMapIndex(buildings); }
    /// Forgets all wards and map images; buffered samples stay.
    void clearIndexes();

    /// Whether no ward is known.
    [[nodiscard]] bool isEmpty() const { return wards_.empty(); }
    /// The known map images by level id.
    [[nodiscard]] const LevelMapIndex& maps() const { return maps_; }
    /// The known wards by normalised name. Built by each call; made for the log.
    [[nodiscard]] std::map<std::string, IndexedDapoWard> indexedDapoWardsByName() const;

    /// What one sample has detected.
    struct Detected {
        std::vector<DapoWard> wards;  ///< ascending by id; equal ids by name
        /// One entry for each of the wards whose level has no map image, in the order of the wards: the id of
        /// that level. The x and y of such a ward are in bundle units. The service logs each entry.
        std::vector<std::int64_t> levelsWithoutMap;
    };

    /// Adds a sample and returns the wards that are detected with it.
    [[nodiscard]] Detected handle(platform::ReceivedForce sample);

    /// Forgets the samples; wards and map images stay.
    void reset() { bufferedRfds_.clear(); }

    // ---- the grounds of a decision, for tools that explain it

    /// Whether a reading counts for a ward with that threshold; both in dBm.
    [[nodiscard]] static bool qualifies(double strength, double threshold) {
        // A branch for each comparison would be mispredicted often.
        return (strength >= threshold) & (strength < std::numeric_limits<double>::infinity());
    }

    /// The samples of the last 10 seconds.
    [[nodiscard]] const SampleWindow& window() const { return bufferedRfds_; }
    /// The names of the known wards.
    [[nodiscard]] const WardNames& names() const { return names_; }
    /// The known wards; a ward's index is the number of its name.
    [[nodiscard]] const std::vector<IndexedDapoWard>& wards() const { return wards_; }

private:
    // The readings of one ward that count. Each sample counts on from a number that no earlier sample has
    // reached, so that the counts of all wards need not be cleared first.
    struct Tally {
        std::uint64_t count = 0;
        double strongest = 0;  // dBm
    };

    /// Counts the readings of the window and finds the wards that have enough of them.
    void qualify();

    WardNames names_;
    std::vector<IndexedDapoWard> wards_;  // by the number of their name, which is the order of delivery
    std::vector<Tally> tallies_;          // by ward
    std::uint64_t countsFrom_ = 0;
    NumberSet qualified_;  // the wards that this sample detects; empty between samples
    LevelMapIndex maps_;
    SampleWindow bufferedRfds_{RFD_BUFFER_TIME_WINDOW * 1000};
};

}  // namespace oska
