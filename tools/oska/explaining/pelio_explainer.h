#pragma once

#include <map>
#include <utility>
#include <vector>

#include "oska/pelio/pelio_ward_selection.h"
#include "tools/oska/explaining/explainer.h"

namespace oska::tool {

/// "Why there?" Verdicts: "reported", "held_back" (strongest, but a change has to wait), "beaten",
/// "too_weak", "not_heard".
class PelioExplainer final : public Explainer {
public:
    PelioExplainer(const PelioBundle& bundle, Question question);

private:
    using Candidate = PelioWardSelection::Candidate;

    /// What became of a ward at an instant, the worst first.
    enum class Verdict { notHeard, tooWeak, beaten, heldBack, reported };

    /// How much a ward counted for at an instant; the greater the better.
    using Standing = std::pair<Verdict, double>;

    /// The best candidate of a ward, and when it was heard.
    struct Heard {
        Candidate candidate;
        std::int64_t mobileTime = 0;
    };

    void advance() override {}
    void hear(const platform::ReceivedForce& sample) override;
    void perform(const Action& action) override;
    void explainNow() override;
    void explainWalk() override;
    [[nodiscard]] std::vector<std::string> wardNames() const override { return names_; }
    [[nodiscard]] bool isKnown(const std::string& name) const override {
        return selection_.names().find(name).has_value();
    }

    void noteChange(const std::optional<PelioWardSelection::Current>& before);
    void noteBestInstants();
    [[nodiscard]] std::vector<Heard> candidates() const;
    [[nodiscard]] std::optional<PelioWinner> winner() const;
    [[nodiscard]] PelioDecision decision() const;
    [[nodiscard]] std::optional<std::int64_t> heldBackUntil(const Candidate& best) const;
    [[nodiscard]] std::map<const PelioWardNode*, double> strongestOfWards() const;
    [[nodiscard]] std::vector<const PelioWardNode*> wardsAskedFor() const;
    [[nodiscard]] std::vector<HeardReading> readingsOf(const PelioWardNode& ward) const;
    [[nodiscard]] WardCase caseOf(const PelioWardNode& ward) const;
    [[nodiscard]] Verdict verdictOn(const PelioWardNode& ward, std::optional<double> strongest,
                                    const Candidate& best) const;
    [[nodiscard]] std::string reasonFor(Verdict verdict, const WardCase& found,
                                        const PelioWardNode& ward) const;
    [[nodiscard]] bool isAskedFor(const PelioChange& change) const;

    PelioWardSelection selection_;
    std::vector<std::string> names_;  // of the bundle's wards, in its order
    std::optional<std::pair<PelioWardSelection::Key, std::int64_t>> waiting_;  // held back, and since when
    std::optional<WardNames::Number> asked_;
    std::map<const PelioWardNode*, std::pair<Standing, WardCase>> best_;
    std::vector<PelioChange> changes_;
};

}  // namespace oska::tool
