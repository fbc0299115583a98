#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "oska/dapo/dapo_detection.h"
#include "oska/dapo/dapo_placement.h"
#include "oska/dapo/dapo_presentation.h"
#include "oska/dapo/dapo_types.h"
#include "oska/foundation/generator_run.h"
#include "oska/platform/notification_center.h"
#include "oska/resources/bundle.h"

namespace oska {

/// What is private of a Dapo view: its life as a service (initialisation, start, stop, end) and the way of a
/// sample from the generator to the presentation. Each operation is the one of the same name in `DapoView`.
/// Threads: main thread, except `mainQueue`. Lifetime: a part of `view`; jobs hold the view weakly.
class DapoService {
public:
    /// `view` three times: as what the delegate is told of, as what shows, and as the generator's delegate.
    /// The class of the view is not complete here, since it includes nothing of its private part.
    DapoService(DapoView& view, views::View& shown, platform::RFDGeneratorDelegate& receiver);

    /// Observes taps and the application's return to the foreground. To be called once the view is shared.
    void connect();
    /// Stops everything; the view is destroyed afterwards.
    void tearDown();

    /// The queue of the main thread. Threads: any.
    [[nodiscard]] const std::shared_ptr<platform::MainQueue>& mainQueue() const { return mainQueue_; }

    void setDelegate(std::weak_ptr<DapoViewDelegate> delegate) { delegate_ = std::move(delegate); }
    [[nodiscard]] std::shared_ptr<DapoViewDelegate> delegate() const { return delegate_.lock(); }
    void initialize(const DapoInitialization& arguments);
    void startService();
    void stopService();
    [[nodiscard]] const LevelMapIndex& maps() const { return detection_.maps(); }
    [[nodiscard]] std::optional<DapoSectorInfo> sectorInfo() const;
    void configureFrame(const std::shared_ptr<views::View>& to, std::shared_ptr<const views::Image> image) {
        placement_.place(to, std::move(image), id_);
    }
    [[nodiscard]] DapoPresentation& presentation() { return presentation_; }

    void handleRfd(platform::ReceivedForce receivedForce);
    void setRfdEmptyMillis(double time) { rfdEmptyMillis_ = time; }

private:
    void finishInitialization(const DapoInitialization& arguments, bool loaded);
    void takeIntoUse(std::shared_ptr<const DapoBundle> bundle);
    void forgetBundle();
    void reportMapImages();
    void reportInit(std::optional<DapoInitErrorCode> failure);
    [[nodiscard]] std::optional<DapoErrorCode> start();
    void handleWillEnterForeground();
    void handleTapDapo();

    DapoView& view_;
    views::View& shown_;
    platform::RFDGeneratorDelegate& receiver_;
    const std::shared_ptr<platform::MainQueue> mainQueue_;
    std::weak_ptr<DapoViewDelegate> delegate_;

    std::optional<std::string> id_;
    bool isInitSuccess_ = false;
    GeneratorRun generatorRun_;
    double rfdEmptyMillis_ = 0;       // milliseconds, as the generator last reported
    std::atomic<float> pressure_{0};  // read by the generator on any thread; nothing here changes it

    std::shared_ptr<const DapoBundle> dapoBundle_;
    DapoDetection detection_;
    DapoPresentation presentation_;
    DapoPlacement placement_;
    std::unique_ptr<platform::Observation> foregroundObservation_;
};

}  // namespace oska
