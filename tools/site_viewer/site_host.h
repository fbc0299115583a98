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

/// "Riverside Museum 1F (537, 214)"; the coordinates are pixels of the map image.
[[nodiscard]] std::string describe(const oska::PelioResult& at);
/// "lobby, ceramics-kiln".
[[nodiscard]] std::string namesOf(const std::vector<oska::DapoWard>& wards);

/// The host of the two services: creates, starts and stops them, and keeps what they report.
///
/// Threads: the main thread, on which its generators send, too. Lifetime: destroying it stops the services.
class SiteHost final : public oska::PelioServiceManagerDelegate, public oska::DapoViewDelegate {
public:
    struct Callbacks {
        std::function<void()> onSettled;                  ///< both services have initialised or failed
        std::function<void(const std::string&)> onEvent;  ///< what a service reported, in one line
        /// The overlay was tapped; the wards are those near the phone.
        std::function<void(const std::vector<oska::DapoWard>&)> onLinks;
    };

    /// Creates both services for the sector and initialises them from the server at `serverUrl`.
    [[nodiscard]] static std::shared_ptr<SiteHost> create(std::int64_t sectorId, const std::string& serverUrl,
                                                          Callbacks callbacks);

    /// Places the Dapo view, which shows `image`, over `host`.
    void placeOverlay(std::shared_ptr<oska::views::View> host,
                      std::shared_ptr<const oska::views::Image> image);

    /// Stops both services, clears what they reported, and starts those that are initialised.
    void restart();

    /// Reports an overlay that has appeared or disappeared since the last call: the kit has no callback for
    /// it, so call this often.
    void noticeOverlay();

    [[nodiscard]] bool isSettled() const { return pelioOutcome_ && dapoOutcome_; }
    [[nodiscard]] bool isOverlayShown() const { return !dapo_->getVisibility(); }
    /// The wards that Dapo has selected; empty if there are none.
    [[nodiscard]] std::vector<oska::DapoWard> selection() const { return dapo_->getCurrentDapoWards(); }
    /// The last position; nullopt until the first one after a start.
    [[nodiscard]] const std::optional<oska::PelioResult>& position() const { return position_; }
    /// The positions on a level, the latest last, without repetitions; pixels of the map image.
    [[nodiscard]] std::vector<QPointF> trailOn(std::int64_t levelId) const;

    /// Why the service does not run, for the user; empty when it runs.
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
    /// nullopt: not known yet; empty: success; otherwise the failure.
    using Outcome = std::optional<std::string>;

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
