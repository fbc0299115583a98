#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "oska/dapo/dapo_types.h"
#include "oska/platform/quenlo_common.h"
#include "oska/views/image.h"
#include "oska/views/view.h"

namespace oska {

class DapoService;

/// The Dapo service: a view over one of the host's own views. It listens for the wards of a site, shows
/// itself while wards are near, reports them to the host, and reports taps. It uploads each sample that it
/// hears.
///
///     auto view = DapoView::create();
///     view->setDelegate(host);
///     view->configureFrame({.to = hostView});
///     view->initialize({.id = "demo", .sectorId = 12, .baseURL = "http://10.0.0.2:5050"});
///     // after onInitSuccess:
///     view->startService();
///
/// Requires: a platform is installed (see platform/platform.h).
/// Threads: all work is done on the main thread. A public operation that is called on another thread waits
/// until the main thread has done it. When the main queue has stopped, such a call does nothing, logs an
/// error and returns an empty value; `getVisibility` returns true then.
/// Lifetime: the last reference may be released on any thread. The service is then stopped and the view
/// destroyed on the main thread; no sample, timer or job uses the view afterwards. When the main queue has
/// stopped, the view is destroyed on the releasing thread instead.
/// Shared by all views of the process: the samples that wait for upload, and the server that they go to. A
/// batch contains the samples of each running view. Each start drops the samples that wait, each stop uploads
/// them, and the base URL given last is used for all.
/// Errors: no operation throws; outcomes are reported to the delegate, and logged with the tag DapoView.
class DapoView final : public views::View, public platform::RFDGeneratorDelegate {
public:
    /// The arguments of `initialize`.
    using Initialization = DapoInitialization;

    /// The arguments of `configureFrame`.
    struct Placement {
        /// The view to cover. Must not be this view or inside it.
        std::shared_ptr<views::View> to = {};
        /// The image to show. Null: the image that the kit contains.
        std::shared_ptr<const views::Image> dapoImage = {};
    };

    /// Makes a view that is hidden, has no superview and has no bundle.
    [[nodiscard]] static std::shared_ptr<DapoView> create();

    ~DapoView() override;

    /// The receiver of all reports. The view holds it weakly; it may be replaced or cleared at any time.
    void setDelegate(std::weak_ptr<DapoViewDelegate> delegate);
    /// Null when no delegate is set or when it has been destroyed.
    [[nodiscard]] std::shared_ptr<DapoViewDelegate> delegate() const;

    /// Puts the view on top of `placement.to`, pins its edges to it, and shows the image. May be called
    /// again, also with another view. Without a valid view it logs an error and changes nothing.
    void configureFrame(Placement placement);

    /// Loads the sector's bundle. The outcome is `onInitSuccess`: for an invalid id inside this call,
    /// otherwise in a later job of the main queue.
    ///
    /// May be called again at any time. A running service goes on, and samples heard before count for the new
    /// bundle. A failure removes the old bundle and all samples, and hides the view.
    void initialize(Initialization arguments);

    /// Starts the signal generator and the output timer. The outcome is `onDapoSuccess`, inside this call. It
    /// describes this start only: the host may have stopped the service meanwhile, in a callback or in an
    /// event loop that the generator runs.
    void startService();

    /// Stops the generator and the timer, uploads the samples that wait, forgets samples and selection, and
    /// hides the view. The bundle stays, so that the service can start again. Calls no delegate.
    ///
    /// A sample that the generator sent on another thread before, and that still waits in the main queue, is
    /// handled after the stop. It counts also for the next start. Enough such samples select their ward and
    /// show the view for 5 seconds, but nothing is delivered until the next start.
    void stopService();

    /// The map images of the site by level id; empty without a bundle.
    [[nodiscard]] std::map<std::int64_t, DapoMapImage> getDapoMapImages() const;
    /// The map image of one level; nullopt for an unknown level.
    [[nodiscard]] std::optional<DapoMapImage> getDapoMapImage(std::int64_t levelId) const;
    /// The site as a tree of buildings, levels and wards; nullopt without a bundle.
    [[nodiscard]] std::optional<DapoSectorInfo> getDapoSectorInfo() const;

    /// True: shows the view for 5 seconds. False: hides it; when a detection or an earlier call still keeps
    /// it visible, at the end of those 5 seconds.
    void setVisibility(bool isVisible);
    /// True while the view is HIDDEN, false while it is shown.
    [[nodiscard]] bool getVisibility() const;

    /// The period of the output timer in seconds, initially 1; used from the next start on. Accepts finite
    /// numbers above zero; less than 0.001 counts as 0.001. Any other value is ignored and logged.
    void setSelectionInterval(double seconds);

    /// The number of seconds after which an unchanged selection is delivered again, at the first tick of the
    /// output timer. Nullopt, the initial value: never. Accepts numbers from zero on, infinity included. Any
    /// other value is ignored and logged.
    ///
    /// Do not use a multiple of the selection interval: ticks come a little late, so the expected tick may
    /// come just before the time is over, and then the next tick delivers. Subtract half a selection
    /// interval.
    void setUnchangedDeliveryInterval(std::optional<double> seconds);

    /// The wards that are selected now, in the order of a delivery; empty when nothing is selected.
    [[nodiscard]] std::vector<DapoWard> getCurrentDapoWards() const;

    // The generator's callbacks, called by the generator on any thread; a host does not call them.

    /// One sample. On the main thread it is handled inside the call, otherwise in a job of the main queue.
    void onRfdResult(platform::RFDGenerator& generator, platform::ReceivedForce receivedForce) override;
    /// Logs the error; the service goes on.
    void onRfdError(platform::RFDGenerator& generator, int code, const std::string& msg) override;
    /// Stores the time, in milliseconds, for which nothing was received.
    void onRfdEmptyMillis(platform::RFDGenerator& generator, double time) override;

private:
    DapoView();
    static void release(DapoView* view);
    template <class Work>
    void onMain(std::string_view operation, Work work) const;

    const std::unique_ptr<DapoService> service_;
};

}  // namespace oska
