#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "oska/dapo/dapo_output.h"
#include "oska/dapo/dapo_types.h"
#include "oska/platform/notification_center.h"
#include "oska/platform/platform.h"
#include "oska/resources/bundle.h"
#include "oska/views/image_view.h"

namespace oska {

class DapoDetection;
class GeneratorRun;

/// The Dapo service: a view laid over one of the host's own, which shows itself while wards of the site are
/// near, tells the host which, and reports taps. Every sample that it hears is also uploaded.
///
///     auto view = DapoView::create();
///     view->setDelegate(host);
///     view->configureFrame({.to = hostView});
///     view->initialize({.id = "demo", .sectorId = 12, .baseURL = "http://10.0.0.2:5050"});
///     // after onInitSuccess:
///     view->startService();
///
/// Threads: everything happens on the main thread. Public operations called elsewhere wait for it; when the
/// main queue has stopped they do nothing, which is logged, and answer nothing (a view counts as hidden
/// then). Lifetime: the last reference may go on any thread. The service is then stopped on the main thread,
/// and no sample, tick or work item touches the view any more; should the main queue have stopped, the view
/// is destroyed where it is.
/// Shared by all views of the process: the batch that is being collected for upload, and the server that it
/// goes to. A batch holds the samples of every view that runs; a start forgets what any of them has
/// collected, a stop uploads it; and the base URL that was given last counts.
class DapoView final : public views::View, public platform::RFDGeneratorDelegate {
public:
    struct Initialization {
        std::string id;  ///< ASCII letters, digits, underscores and hyphens
        std::int64_t sectorId = 0;
        bool forceUpdate = false;  ///< download the bundle even when its version is unchanged
        std::string baseURL;       ///< of the server that samples are uploaded to
        /// As for `setUnchangedDeliveryInterval`; one that is refused there counts as none.
        std::optional<double> unchangedDeliveryInterval;
    };

    struct Placement {
        std::shared_ptr<views::View> to;                ///< the view to cover; not one inside this view
        std::shared_ptr<const views::Image> dapoImage;  ///< null: the built-in one
    };

    /// A view that is hidden, placed nowhere, and knows no site.
    [[nodiscard]] static std::shared_ptr<DapoView> create();

    ~DapoView() override;

    /// Held weakly; may be set, replaced and taken away at any time.
    void setDelegate(std::weak_ptr<DapoViewDelegate> delegate);
    [[nodiscard]] std::shared_ptr<DapoViewDelegate> delegate() const;

    /// Puts the view over `to`, with pinned edges, and shows the image in it. May be called again, with
    /// another view, too.
    void configureFrame(Placement placement);

    /// Loads the sector's bundle; the outcome is `onInitSuccess`: of an id that is refused inside this call,
    /// of a load in a later job of the main queue. May be called again at any time: while the
    /// service runs it goes on, and what it has heard counts for the new bundle. A failure forgets the bundle
    /// and all that was heard.
    void initialize(Initialization arguments);

    /// Starts to listen. The outcome is `onDapoSuccess`, called before this returns; it tells of the start
    /// alone, also when the host has stopped the service meanwhile, in a callback or in an event loop that
    /// the signal generator ran.
    void startService();

    /// Stops listening, uploads what is left, forgets what was heard and hides the view; the bundle stays. No
    /// delegate call.
    /// A sample that the generator has handed over on another thread before, and that waits in the main
    /// queue, is still handled afterwards: it counts as heard, also for the next start; enough of them select
    /// their ward and show the view for 5 seconds, though nothing is delivered until the next start.
    void stopService();

    /// By level id; empty without a bundle.
    [[nodiscard]] std::map<std::int64_t, DapoMapImage> getDapoMapImages() const;
    [[nodiscard]] std::optional<DapoMapImage> getDapoMapImage(std::int64_t levelId) const;
    /// None without a bundle.
    [[nodiscard]] std::optional<DapoSectorInfo> getDapoSectorInfo() const;

    /// Shows the view for 5 seconds, or hides it: at once, or when the time is over that it must show.
    void setVisibility(bool isVisible);
    /// True while the view is hidden.
    [[nodiscard]] bool getVisibility() const;

    /// The period at which selections are delivered, from the next start on; 1 second from the beginning.
    /// Takes finite numbers above zero, and what is under a millisecond counts as one. Anything else is
    /// refused and logged.
    void setSelectionInterval(double seconds);

    /// After how many seconds an unchanged selection is delivered again, at the first tick; none, as at the
    /// beginning: never. Takes numbers from zero on. Anything else is refused and logged.
    /// With a multiple of the selection interval chance decides: ticks are late by a little, now more, now
    /// less, so the tick that was meant may come just short of it, and the next one delivers. Half a
    /// selection interval less avoids that.
    void setUnchangedDeliveryInterval(std::optional<double> seconds);

    /// Empty while nothing is selected.
    [[nodiscard]] std::vector<DapoWard> getCurrentDapoWards() const;

    // The generator's callbacks, on any thread.
    void onRfdResult(platform::RFDGenerator& generator, platform::ReceivedForce receivedForce) override;
    void onRfdError(platform::RFDGenerator& generator, int code, const std::string& msg) override;
    void onRfdEmptyMillis(platform::RFDGenerator& generator, double time) override;

private:
    DapoView();
    void connect();
    static void release(DapoView* view);
    void tearDown();

    [[nodiscard]] std::weak_ptr<DapoView> weakSelf();
    void onMain(std::string_view operation, const std::function<void()>& work) const;
    [[nodiscard]] platform::WallTime now() const;

    // Initialisation and start.
    void load(const Initialization& arguments);
    void finishInitialization(const Initialization& arguments, bool loaded);
    void takeIntoUse(std::shared_ptr<const DapoBundle> bundle);
    void forgetBundle();
    void reportMapImages();
    void reportInit(std::optional<DapoInitErrorCode> failure);
    [[nodiscard]] std::optional<DapoErrorCode> start();
    void startTimer();
    void stop();

    // Samples, taps and the host's settings.
    void handleRfd(platform::ReceivedForce receivedForce);
    static void logLevelsWithoutMap(const std::vector<std::int64_t>& levelIds);
    void perform(const DapoOutput::Effects& effects);
    void scheduleHoldRelease(std::chrono::nanoseconds delay);
    void handleWillEnterForeground();
    void handleTapDapo();
    void storeUnchangedDeliveryInterval(std::string_view operation, std::optional<double> seconds,
                                        bool refusedCountsAsNone);

    // Placement.
    void place(const Placement& placement);
    void pinEdges();
    void setupAssets(std::shared_ptr<const views::Image> image);

    const std::shared_ptr<platform::MainQueue> mainQueue_;
    const std::shared_ptr<platform::WallClock> clock_;

    // The service. Here and below: main thread only, but for what is atomic.
    std::weak_ptr<DapoViewDelegate> delegate_;
    std::optional<std::string> id_;
    bool isInitSuccess_ = false;
    const std::unique_ptr<GeneratorRun> generatorRun_;
    double rfdEmptyMillis_ = 0;       // milliseconds, as the generator last said
    std::atomic<float> pressure_{0};  // for the generator; nothing here changes it

    // From samples to what the host sees.
    std::shared_ptr<const DapoBundle> dapoBundle_;
    const std::unique_ptr<DapoDetection> detection_;
    const std::unique_ptr<DapoOutput> output_;
    double outputInterval_ = 1.0;  // seconds
    std::unique_ptr<platform::ScheduledWork> outputTimer_;
    std::unique_ptr<platform::ScheduledWork> holdReleaseWorkItem_;

    // On the screen.
    std::array<std::shared_ptr<views::LayoutConstraint>, 4> edgeConstraints_;
    std::shared_ptr<const views::Image> dapoImage_;
    const std::shared_ptr<views::ImageView> dapoImageView_;
    std::shared_ptr<views::TapGestureRecognizer> tapRecognizer_;
    std::unique_ptr<platform::Observation> foregroundObservation_;
};

}  // namespace oska
