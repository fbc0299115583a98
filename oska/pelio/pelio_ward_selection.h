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

/// One ward of the bundle together with its building and level. A value.
struct PelioWardNode {
    std::int64_t id;           ///< as in the bundle; not necessarily unique
    std::string name;          ///< as in the bundle, not normalised
    std::int64_t buildingId;   ///< the building that the ward is in
    std::string buildingName;  ///< as in the bundle
    std::int64_t levelId;      ///< the level that the ward is on
    std::string levelName;     ///< as in the bundle
    std::int64_t x;            ///< bundle units
    std::int64_t y;            ///< bundle units, second axis
    double thresholdRssi;      ///< dBm: the weakest reading at which the ward counts as present
};

/// Pelio's engine: from samples to the one ward that is reported.
///
/// The best ward is that of the strongest reading of the last 5 seconds that meets its ward's threshold. Of
/// equal readings the higher threshold wins, then the smaller id, then the one examined first. A reported
/// ward stays for at least 5 seconds after the last change, even when another one is better.
///
/// Time: the mobile time of the samples; the engine reads no clock. Cost: that of the readings in the window;
/// a full window allocates no memory. Threads: one at a time. Lifetime: copies what it needs of the bundle.
/// Errors: none; a sample without a usable reading changes nothing.
class PelioWardSelection {
public:
    static constexpr std::int64_t RFD_BUFFER_TIME_WINDOW = 5;      ///< seconds
    static constexpr std::int64_t RESULT_CHANGE_MIN_INTERVAL = 5;  ///< seconds

    /// A position report, and what its caller has to log.
    struct Report {
        PelioResult result;  ///< what the host receives
        bool hasMapImage;    ///< false: the ward's level has no map image, and x and y are in bundle units
    };

    /// An engine without wards and map images.
    PelioWardSelection() = default;
    /// An engine for the wards and map images of a bundle. Wards with equal normalised names are all known:
    /// one reading counts for each of them.
    explicit PelioWardSelection(const PelioBundle& bundle);
    PelioWardSelection(const PelioWardSelection&) = delete;  // its state points into itself
    PelioWardSelection& operator=(const PelioWardSelection&) = delete;

    /// The number of wards; wards with equal names count each.
    [[nodiscard]] std::size_t wardCount() const { return wards_.size(); }
    /// The map images of the bundle by level id.
    [[nodiscard]] const LevelMapIndex& maps() const { return maps_; }

    /// Adds a sample and returns the ward to report for it. Null when no reading of the window qualifies; the
    /// current ward stays current then. The pointer is valid as long as the engine.
    const PelioWardNode* handle(platform::ReceivedForce sample);

    /// The position report of a ward, for a sample of that mobile time in milliseconds.
    [[nodiscard]] Report report(const PelioWardNode& ward, std::int64_t mobileTime) const;

    /// Forgets the samples and the current ward; the bundle's wards stay.
    void reset();

    // ---- the grounds of a decision, for tools that explain it

    /// What identifies a ward when a change of ward is decided: normalised name and id.
    struct Key {
        WardNames::Number name;
        std::int64_t id;
        friend bool operator==(const Key&, const Key&) = default;
    };

    /// A reading that meets the threshold of its ward, with that ward.
    struct Candidate {
        const PelioWardNode* ward = nullptr;  ///< null: no candidate
        Key key{};
        double observedRssi = 0;  ///< dBm
    };

    /// The ward that is reported.
    struct Current {
        Key key;
        const PelioWardNode* ward;
        std::int64_t changedAt;  ///< mobile time, milliseconds
    };

    /// The first thing in which two candidates differ; it decides between them.
    enum class Difference {
        strength,   ///< the stronger reading wins
        threshold,  ///< the higher threshold wins
        id,         ///< the lower ward id wins
        none,       ///< equal in all three: the one that was found first stays
    };

    /// Whether a reading, in dBm, meets the threshold of the ward. A reading equal to the threshold does; NaN
    /// does not.
    [[nodiscard]] static bool qualifies(const PelioWardNode& ward, double rssi) {
        return ward.thresholdRssi <= rssi;
    }
    /// Returns by which rule one candidate is better than the other.
    [[nodiscard]] static Difference difference(const Candidate& a, const Candidate& b);
    /// Whether `a` wins against `b`, which was examined before.
    [[nodiscard]] static bool isBetter(const Candidate& a, const Candidate& b);

    /// The best candidate of the window.
    [[nodiscard]] Candidate strongest() const;
    /// Nullopt before the first report and after a reset.
    [[nodiscard]] const std::optional<Current>& current() const { return current_; }

    /// The samples of the last 5 seconds.
    [[nodiscard]] const SampleWindow& window() const { return window_; }
    /// The names of the wards.
    [[nodiscard]] const WardNames& names() const { return names_; }
    /// The wards with that name, in bundle order.
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
