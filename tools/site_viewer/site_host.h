#pragma once

#include <QPointF>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "oska/dapo/dapo_view.h"
#include "oska/pelio/pelio_service_manager.h"

namespace viewer {

/// "Riverside Museum 1F (537, 214)", in pixels of the map image.
[[nodiscard]] std::string describe(const oska::PelioResult& at);
[[nodiscard]] std::string namesOf(const std::vector<oska::DapoWard>& wards);

/// What a host of the two services does with them: starts both once they are initialised, and keeps what
/// they say for those who draw it.
///
/// Threads: the main thread; its generators send there, too. Lifetime: destroying it stops the services.
class SiteHost final : public oska::PelioServiceManagerDelegate, public oska::DapoViewDelegate {
public:
    struct Callbacks {
        std::function<void()> onSettled;                  ///< both initialisations have reported
        std::function<void(const std::string&)> onEvent;  ///< what a service said, in a line
        std::function<void(const std::vector<oska::DapoWard>&)> onLinks;  ///< of a tap on the overlay
    };

    /// Makes both services for the sector and initialises them from the server at `serverUrl`.
    [[nodiscard]] static std::shared_ptr<SiteHost> create(std::int64_t sectorId, const std::string& serverUrl,
                                                          Callbacks callbacks);

    /// Lays the Dapo view over `host`.
    void placeOverlay(std::shared_ptr<oska::views::View> host,
                      std::shared_ptr<const oska::views::Image> image);

    /// Stops both services, forgets what they said, and starts those that were initialised.
    void restart();

    /// To be called now and then: the kit tells no host that its view has come or gone.
    void noticeOverlay();

    [[nodiscard]] bool isSettled() const { return pelioOutcome_ && dapoOutcome_; }
    [[nodiscard]] bool isOverlayShown() const { return !dapo_->getVisibility(); }
    /// Empty while nothing is selected.
    [[nodiscard]] std::vector<oska::DapoWard> selection() const { return dapo_->getCurrentDapoWards(); }
    /// None until the first result since the (re)start.
    [[nodiscard]] const std::optional<oska::PelioResult>& position() const { return position_; }
    /// Where the phone was on a level, the latest last; each place once in a row.
    [[nodiscard]] std::vector<QPointF> trailOn(std::int64_t levelId) const;

    /// Why a service does not run, for people; empty when it does.
    [[nodiscard]] std::string pelioProblem() const { return problem(pelioOutcome_); }
    [[nodiscard]] std::string dapoProblem() const { return problem(dapoOutcome_); }

    void onInitSuccess(oska::PelioServiceManager& service, bool success,
                       std::optional<oska::PelioInitErrorCode> code) override;
    void onPelioSuccess(oska::PelioServiceManager& service, bool success,
                        std::optional<oska::PelioErrorCode> code) override;
    void onPelioResult(oska::PelioServiceManager& service, const oska::PelioResult& result) override;
    void onInitSuccess(oska::DapoView& view, bool success,
                       std::optional<oska::DapoInitErrorCode> code) override;
    void onDapoSuccess(oska::DapoView& view, bool success, std::optional<oska::DapoErrorCode> code) override;
    void onClick(oska::DapoView& view, const std::vector<oska::DapoWard>& dapoWards) override;
    void onDapoSelectionChanged(oska::DapoView& view, const std::vector<oska::DapoWard>& dapoWards) override;

private:
    using Outcome = std::optional<std::string>;  ///< none: not yet; empty: fine; otherwise the failure

    explicit SiteHost(Callbacks callbacks) : callbacks_(std::move(callbacks)) {}
    [[nodiscard]] static std::string problem(const Outcome& outcome) { return outcome.value_or(""); }
    void settle(Outcome& outcome, const std::string& service, std::string failure);

    const Callbacks callbacks_;
    std::shared_ptr<oska::PelioServiceManager> pelio_;
    std::shared_ptr<oska::DapoView> dapo_;
    Outcome pelioOutcome_;
    Outcome dapoOutcome_;
    std::optional<oska::PelioResult> position_;
    std::map<std::int64_t, std::vector<QPointF>> trails_;  // by level id
    bool wasOverlayShown_ = false;
};

}  // namespace viewer
