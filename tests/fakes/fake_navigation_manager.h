#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <mutex>

#include "oska/platform/quenlo_navigation.h"

namespace oska::fakes {

/// A navigation service that records what it is told, and tells its delegate what a test wants told.
class FakeNavigationManager : public platform::NavigationManager {
public:
    FakeNavigationManager() {
        ON_CALL(*this, setDelegate)
            .WillByDefault([this](std::weak_ptr<platform::NavigationManagerDelegate> delegate) {
                const std::lock_guard lock(mutex_);
                delegate_ = std::move(delegate);
            });
    }

    /// False when there is no delegate to tell. Threads: any.
    template <class Notify>
    bool notify(Notify notify) {
        const auto delegate = lockedDelegate();
        if (delegate) notify(*delegate);
        return delegate != nullptr;
    }

    MOCK_METHOD(void, setDelegate, (std::weak_ptr<platform::NavigationManagerDelegate>), (override));
    MOCK_METHOD(void, initialize, (), (override));
    MOCK_METHOD(void, startService, (platform::UserMode), (override));
    MOCK_METHOD(void, stopService, (StopCompletion), (override));
    MOCK_METHOD(std::optional<std::string>, getBuildingName, (std::int64_t), (override));
    MOCK_METHOD(std::optional<std::int64_t>, getBuildingId, (const std::string&), (override));
    MOCK_METHOD(std::optional<std::string>, getLevelName, (std::int64_t), (override));
    MOCK_METHOD(std::optional<std::int64_t>, getLevelId,
                (std::int64_t, const std::string&, const std::string&), (override));
    MOCK_METHOD(std::optional<std::vector<float>>, getScaleOffset,
                (std::int64_t, const std::string&, const std::string&), (override));
    MOCK_METHOD(void, setNaviDestination, (const platform::Point&, bool), (override));
    MOCK_METHOD(void, requestRouting,
                (const platform::RoutingStart&, const platform::Point&, const std::vector<platform::Point>&,
                 bool, RoutingCompletion),
                (override));

private:
    std::shared_ptr<platform::NavigationManagerDelegate> lockedDelegate() {
        const std::lock_guard lock(mutex_);
        return delegate_.lock();
    }

    std::mutex mutex_;
    std::weak_ptr<platform::NavigationManagerDelegate> delegate_;
};

/// A host that records what it hears.
class FakeNavigationHost : public platform::NavigationManagerDelegate {
public:
    MOCK_METHOD(void, onInitSuccess,
                (bool, std::optional<platform::InitErrorCode>, const platform::TovanServiceResult&),
                (override));
    MOCK_METHOD(void, onTovanSuccess,
                (bool, std::optional<platform::TovanErrorCode>, const platform::TovanServiceResult&),
                (override));
    MOCK_METHOD(void, onTovanResult, (const platform::TovanResult&), (override));
    MOCK_METHOD(void, onTovanReport, (platform::TovanServiceCode, const std::string&), (override));
    MOCK_METHOD(void, isTovanInOutStateChanged, (platform::InOutState), (override));
    MOCK_METHOD(void, isUserArrived, (), (override));
    MOCK_METHOD(void, isNavigationRouteChanged, (const std::vector<platform::NavigationRouteEntry>&),
                (override));
    MOCK_METHOD(void, isNavigationRouteFailed, (platform::NavigationRouteFailureReason), (override));
    MOCK_METHOD(void, isUserGuidanceOut, (), (override));
    MOCK_METHOD(void, isWaypointChanged, (const std::vector<std::vector<double>>&), (override));
    MOCK_METHOD(void, onBuildingLevelChangeStateChanged,
                (platform::BuildingLevelChangeState, const std::string&, const std::string&,
                 const std::string&, const std::string&, std::int64_t),
                (override));
};

}  // namespace oska::fakes
