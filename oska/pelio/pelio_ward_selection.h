#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "oska/foundation/sample_window.h"
#include "oska/pelio/pelio_types.h"
#include "oska/resources/bundle.h"
#include "oska/resources/level_map_index.h"

namespace oska {

/// One ward of the bundle, flattened with its building and level.
struct PelioWardNode {
    std::int64_t id;
    std::string name;  ///< as in the bundle, not normalised
    std::int64_t buildingId;
    std::string buildingName;
    std::int64_t levelId;
    std::string levelName;
    std::int64_t x;  ///< bundle units
    std::int64_t y;
    double thresholdRssi;  ///< dBm: the weakest reading at which the ward counts as present
};

/// Pelio's engine: from samples to the one ward to be reported.
///
/// The ward is that of the strongest reading of the last 5 seconds which meets the ward's own threshold; of
/// equal readings the higher threshold counts, then the smaller id, then the one examined first. A ward once
/// reported stays for at least 5 seconds, measured from the last change. Time is the samples' own; there is
/// no clock here. Built from a bundle, of which it keeps nothing. Threads: one at a time.
class PelioWardSelection {
public:
    static constexpr std::int64_t RFD_BUFFER_TIME_WINDOW = 5;      ///< seconds
    static constexpr std::int64_t RESULT_CHANGE_MIN_INTERVAL = 5;  ///< seconds

    struct Report {
        PelioResult result;
        bool hasMapImage;  ///< false: the ward's level has no map image, and x and y are in bundle units
    };

    /// Knows no ward.
    PelioWardSelection() = default;
    explicit PelioWardSelection(const PelioBundle& bundle);
    PelioWardSelection(const PelioWardSelection&) = delete;  // its state points into itself
    PelioWardSelection& operator=(const PelioWardSelection&) = delete;

    [[nodiscard]] std::size_t wardCount() const { return wards_.size(); }
    [[nodiscard]] const LevelMapIndex& maps() const { return maps_; }

    /// The ward to report for this sample, or none when nothing in the window qualifies; a ward that was
    /// reported before is kept in mind then. The pointer holds as long as the engine.
    const PelioWardNode* handle(platform::ReceivedForce sample);

    /// The position report of a ward, for a sample of that mobile time in milliseconds.
    [[nodiscard]] Report report(const PelioWardNode& ward, std::int64_t mobileTime) const;

    /// Forgets samples and ward, and keeps the bundle's wards.
    void reset();

    // ---- what a decision rests on, for those who explain it

    /// Two nodes are one ward to the change control when their keys are equal: normalised name and id.
    struct Key {
        WardNames::Number name;
        std::int64_t id;
        friend bool operator==(const Key&, const Key&) = default;
    };

    /// A reading that meets the threshold of its ward.
    struct Candidate {
        const PelioWardNode* ward = nullptr;  ///< null: there is none
        Key key{};
        double observedRssi = 0;  ///< dBm
    };

    struct Current {
        Key key;
        const PelioWardNode* ward;
        std::int64_t changedAt;  ///< mobile time, milliseconds
    };

    /// What two candidates differ in, the first difference deciding between them.
    enum class Difference { STRENGTH, THRESHOLD, ID, NONE };

    [[nodiscard]] static bool qualifies(const PelioWardNode& ward, double rssi) {
        return ward.thresholdRssi <= rssi;
    }
    [[nodiscard]] static Difference difference(const Candidate& a, const Candidate& b);
    /// Whether `a` is preferred to `b`, which was examined before.
    [[nodiscard]] static bool isBetter(const Candidate& a, const Candidate& b);

    /// The best candidate of the window.
    [[nodiscard]] Candidate strongest() const;
    /// The ward reported last, and since when.
    [[nodiscard]] const std::optional<Current>& current() const { return current_; }

    [[nodiscard]] const SampleWindow& window() const { return window_; }
    [[nodiscard]] const WardNames& names() const { return names_; }
    /// In bundle order.
    [[nodiscard]] std::span<const PelioWardNode> wardsOf(WardNames::Number name) const;

private:
    void adopt(const Candidate& best, std::int64_t now);

    WardNames names_;
    std::vector<PelioWardNode> wards_;      // grouped by name, in bundle order within a group
    std::vector<std::size_t> firstOfName_;  // by name: where its group starts; one more entry for the end
    LevelMapIndex maps_;
    SampleWindow window_{RFD_BUFFER_TIME_WINDOW * 1000};
    std::optional<Current> current_;
};

}  // namespace oska
