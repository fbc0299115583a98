#include "tools/oska/hosts/pelio_host.h"

#include <utility>

namespace oska::tool {
namespace {

class PelioHost final : public Host,
                        public PelioServiceManagerDelegate,
                        public std::enable_shared_from_this<PelioHost> {
public:
    PelioHost(PelioServiceManager::Options options, const Events& events)
        : options_(std::move(options)), events_(events) {}

    // A service initialises once, when it is made; so doing it again takes a new one.
    void initialize(bool forceUpdate) override {
        options_.forceUpdate = forceUpdate;
        service_.reset();
        service_ = PelioServiceManager::create(options_);
        service_->setDelegate(weak_from_this());
    }

    void start() override { service_->startService(); }

    void stop() override { service_->stopService(); }

    void onInitSuccess(PelioServiceManager&, bool success, std::optional<PelioInitErrorCode> code) override {
        events_.printOutcome("onInitSuccess", success, code);
        noteInitialization(success, code);
    }

    void onPelioSuccess(PelioServiceManager&, bool success, std::optional<PelioErrorCode> code) override {
        events_.printOutcome("onPelioSuccess", success, code);
        noteStart(success);
    }

    void onPelioResult(PelioServiceManager&, const PelioResult& result) override {
        events_.print("onPelioResult", "result", result);
    }

    void onPelioMapImageData(PelioServiceManager&, std::int64_t levelId,
                             const PelioMapImage& mapImage) override {
        events_.print("onPelioMapImageData", "level_id", levelId, "image", mapImage);
    }

private:
    PelioServiceManager::Options options_;
    const Events& events_;
    std::shared_ptr<PelioServiceManager> service_;
};

}  // namespace

std::shared_ptr<Host> makePelioHost(PelioServiceManager::Options options, const Events& events) {
    return std::make_shared<PelioHost>(std::move(options), events);
}

}  // namespace oska::tool
