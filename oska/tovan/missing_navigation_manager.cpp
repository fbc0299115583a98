#include "oska/tovan/missing_navigation_manager.h"

#include <mutex>
#include <utility>

#include "oska/platform/platform.h"

namespace oska {
namespace {

using platform::NavigationManager;
using platform::NavigationManagerDelegate;
using platform::NavigationRouteFailureReason;
using platform::Point;
using platform::TovanServiceResult;

const TovanServiceResult& frameworkMissing() {
    static const TovanServiceResult result{
        "The navigation framework QuenloTovan is missing: the installed platform makes no NavigationManager"};
    return result;
}

class MissingNavigationManager : public NavigationManager,
                                 public std::enable_shared_from_this<MissingNavigationManager> {
public:
    void setDelegate(std::weak_ptr<NavigationManagerDelegate> delegate) override {
        const std::lock_guard lock(mutex_);
        delegate_ = std::move(delegate);
    }

    void initialize() override {
        platform::current().mainQueue->async([weak = weak_from_this()] {
            const auto self = weak.lock();
            if (const auto host = self ? self->delegate() : nullptr) {
                host->onInitSuccess(false, platform::InitErrorCode::UNKNOWN, frameworkMissing());
            }
        });
    }

    void startService(platform::UserMode) override {
        if (const auto host = delegate()) {
            host->onTovanSuccess(false, platform::TovanErrorCode::UNKNOWN, frameworkMissing());
        }
    }

    void stopService(StopCompletion completion) override {
        if (completion) completion(false, frameworkMissing().message, frameworkMissing());
    }

    std::optional<std::string> getBuildingName(std::int64_t) override { return std::nullopt; }
    std::optional<std::int64_t> getBuildingId(const std::string&) override { return std::nullopt; }
    std::optional<std::string> getLevelName(std::int64_t) override { return std::nullopt; }
    std::optional<std::int64_t> getLevelId(std::int64_t, const std::string&, const std::string&) override {
        return std::nullopt;
    }
    std::optional<std::vector<float>> getScaleOffset(std::int64_t, const std::string&,
                                                     const std::string&) override {
        return std::nullopt;
    }

    void setNaviDestination(const Point&, bool) override {
        if (const auto host = delegate())
            host->isNavigationRouteFailed(NavigationRouteFailureReason::UNKNOWN);
    }

    void requestRouting(const platform::RoutingStart&, const Point&, const std::vector<Point>&, bool,
                        RoutingCompletion completion) override {
        if (completion) completion(std::nullopt, {}, NavigationRouteFailureReason::UNKNOWN);
    }

private:
    std::shared_ptr<NavigationManagerDelegate> delegate() {
        const std::lock_guard lock(mutex_);
        return delegate_.lock();
    }

    std::mutex mutex_;
    std::weak_ptr<NavigationManagerDelegate> delegate_;
};

}  // namespace

std::shared_ptr<NavigationManager> makeNavigationManager(const platform::NavigationOptions& options) {
    const auto& make = platform::current().makeNavigationManager;
    std::shared_ptr<NavigationManager> made;
    try {
        if (make) made = make(options);
    } catch (...) {  // as when there is none
    }
    return made ? made : std::make_shared<MissingNavigationManager>();
}

}  // namespace oska
