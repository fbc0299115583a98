#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

#include "oska/foundation/generator_run.h"
#include "oska/pelio/pelio_service_manager.h"
#include "oska/pelio/pelio_ward_selection.h"

namespace oska {

/// What is private of a Pelio service: its life (initialisation, start, stop) and the way of a sample from
/// the generator to the host. Each operation is the one of the same name in `PelioServiceManager`. Threads:
/// any; the mutex is never held while a delegate, the generator or the log is called. Lifetime: a part of
/// `manager`; the load under way holds the manager weakly.
class PelioServiceManager::Service {
public:
    Service(PelioServiceManager& manager, Options options);

    void setDelegate(std::weak_ptr<PelioServiceManagerDelegate> delegate);
    [[nodiscard]] std::shared_ptr<PelioServiceManagerDelegate> delegate() const;

    /// To be called once, when the manager is shared.
    void initialize();
    void startService();
    void stopService();

    [[nodiscard]] std::map<std::int64_t, PelioMapImage> mapImages() const;
    [[nodiscard]] std::optional<PelioMapImage> mapImage(std::int64_t levelId) const;

    void handleRfd(platform::ReceivedForce receivedForce);
    void setRfdEmptyMillis(double time) { rfdEmptyMillis_.store(time); }

private:
    void finishInitialization(bool loaded);
    void reportMapImages();
    void reportInit(std::optional<PelioInitErrorCode> failure);
    [[nodiscard]] bool isInitialized() const;
    [[nodiscard]] std::optional<PelioErrorCode> start();

    PelioServiceManager& manager_;
    const Options options_;
    GeneratorRun generatorRun_;
    std::atomic<double> rfdEmptyMillis_{0};  // milliseconds, as the generator last reported
    std::atomic<float> pressure_{0};         // read by the generator; nothing here changes it

    mutable std::mutex mutex_;  // guards all below
    std::weak_ptr<PelioServiceManagerDelegate> delegate_;
    bool isInitSuccess_ = false;
    std::unique_ptr<PelioWardSelection> selection_;  // never null; built from the bundle
};

}  // namespace oska
