#pragma once

#include <chrono>
#include <map>
#include <utility>
#include <vector>

#include "oska/dapo/dapo_detection.h"
#include "oska/dapo/dapo_output.h"
#include "tools/oska/explaining/explainer.h"

namespace oska::tool {

/// "Why did nothing show?" Verdicts: "detected", "held" (no longer detected, still selected), "too_weak"
/// (enough readings, but below the threshold), "too_few", "not_heard".
class DapoExplainer final : public Explainer {
public:
    DapoExplainer(const DapoBundle& bundle, Question question);

private:
    /// How close the window comes to a detection of a ward; the greater the closer.
    struct Closeness {
        std::int64_t qualifying = 0;
        std::optional<double> threshold;  // dBm that would do, if any
        std::int64_t heard = 0;
        double strongest = 0;
        friend auto operator<=>(const Closeness& a, const Closeness& b) = default;
    };

    using Strengths = std::map<WardNames::Number, std::vector<double>>;  // of each ward, the strongest first

    void advance() override;
    void hear(const platform::ReceivedForce& sample) override;
    void perform(const Action& action) override;
    void explainNow() override;
    void explainWalk() override;
    [[nodiscard]] std::vector<std::string> wardNames() const override;
    [[nodiscard]] bool isKnown(const std::string& name) const override;

    void perform(const DapoOutput::Effects& effects);

    [[nodiscard]] platform::WallTime wallTime() const { return {now(), 0}; }
    [[nodiscard]] Strengths strengthsInWindow() const;
    [[nodiscard]] Closeness closenessOf(WardNames::Number ward, const std::vector<double>& strengths) const;
    [[nodiscard]] double thresholdOf(WardNames::Number ward) const;
    [[nodiscard]] WardCase caseOf(WardNames::Number ward) const;
    [[nodiscard]] std::vector<HeardReading> readingsOf(WardNames::Number ward) const;
    [[nodiscard]] bool isAskedFor(WardNames::Number ward) const;
    [[nodiscard]] bool isAskedFor(const DapoShowing& showing) const;
    void noteSelection(std::int64_t mobileTime);
    void noteBestInstants();

    DapoDetection detection_;
    DapoOutput output_;
    std::vector<DapoWard> detected_;  // with the last sample
    std::optional<std::int64_t> lastDetection_;
    std::optional<platform::WallTime> holdRelease_;
    bool isVisible_ = false;
    std::optional<WardNames::Number> asked_;
    std::map<WardNames::Number, std::pair<Closeness, WardCase>> best_;  // each ward at its best instant
    std::vector<DapoShowing> showings_;
};

}  // namespace oska::tool
