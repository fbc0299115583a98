#pragma once

#include <memory>
#include <mutex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "oska/platform/quenlo_navigation.h"

namespace oska::fakes {

using Lines = std::vector<std::string>;

template <class... Values>
std::string line(const Values&... values) {
    std::ostringstream text;
    text << std::boolalpha;
    const char* blank = "";
    ((text << std::exchange(blank, " ") << values), ...);
    return text.str();
}

inline std::string text(const platform::Point& point) { return line(point.level_id, point.x, point.y); }

template <class Code>
std::string text(std::optional<Code> code) {
    return code ? line(static_cast<int>(*code)) : "nil";
}

/// The calls that a fake has received. Threads: any.
class Record {
public:
    template <class... Values>
    void add(const Values&... values) {
        const std::lock_guard lock(mutex_);
        lines_.push_back(line(values...));
    }
    Lines take() {
        const std::lock_guard lock(mutex_);
        return std::exchange(lines_, {});
    }

private:
    std::mutex mutex_;
    Lines lines_;
};

/// A navigation service that records its calls.
class RecordingNavigation : public platform::NavigationManager {
public:
    explicit RecordingNavigation(Record& record) : record_(record) {}

    /// Returns whether there was a delegate to notify. Threads: any.
    template <class Notify>
    bool notify(Notify notify) {
        std::unique_lock lock(mutex_);
        const auto delegate = delegate_.lock();
        lock.unlock();
        if (delegate) notify(*delegate);
        return delegate != nullptr;
    }

    void setDelegate(std::weak_ptr<platform::NavigationManagerDelegate> delegate) override {
        record_.add("setDelegate", delegate.expired() ? "nil" : "some");
        const std::lock_guard lock(mutex_);
        delegate_ = std::move(delegate);
    }
    void initialize() override {
        record_.add("initialize");
        notify([](auto& host) { host.onInitSuccess(true, std::nullopt, {"at once"}); });
    }
    void startService(platform::UserMode mode) override { record_.add("start", static_cast<int>(mode)); }
    void stopService(StopCompletion completion) override {
        record_.add("stop");
        if (throwsInStop) throw 1;
        stopped = std::move(completion);
    }
    std::optional<std::string> getBuildingName(std::int64_t id) override {
        return line("name of building", id);
    }
    std::optional<std::int64_t> getBuildingId(const std::string& name) override { return name.size(); }
    std::optional<std::string> getLevelName(std::int64_t id) override { return line("name of level", id); }
    std::optional<std::int64_t> getLevelId(std::int64_t sector, const std::string& building,
                                           const std::string& level) override {
        record_.add("levelId", sector, building, level);
        return 8;
    }
    std::optional<std::vector<float>> getScaleOffset(std::int64_t sector, const std::string& building,
                                                     const std::string& level) override {
        record_.add("scaleOffset", sector, building, level);
        return {{1.5F, -2.0F}};
    }
    void setNaviDestination(const platform::Point& dest, bool isVehicle) override {
        record_.add("destination", text(dest), isVehicle);
    }
    void requestRouting(const platform::RoutingStart& start, const platform::Point& end,
                        const std::vector<platform::Point>& waypoints, bool isVehicle,
                        RoutingCompletion completion) override {
        record_.add("routing", text(start.point), start.heading, text(end), text(waypoints.at(0)), isVehicle);
        routed = std::move(completion);
    }

    bool throwsInStop = false;
    StopCompletion stopped;
    RoutingCompletion routed;

private:
    Record& record_;
    std::mutex mutex_;
    std::weak_ptr<platform::NavigationManagerDelegate> delegate_;
};

/// A host that records what it is notified of, and then runs `reaction`.
class RecordingNavigationHost : public platform::NavigationManagerDelegate {
public:
    void onInitSuccess(bool success, std::optional<platform::InitErrorCode> code,
                       const platform::TovanServiceResult& result) override {
        hear("init", success, text(code), result.message);
    }
    void onTovanSuccess(bool success, std::optional<platform::TovanErrorCode> code,
                        const platform::TovanServiceResult& result) override {
        hear("start", success, text(code), result.message);
    }
    void onTovanResult(const platform::TovanResult& result) override {
        hear("result", result.mobile_time, result.building_name, result.level_name, result.x, result.y);
    }
    void onTovanReport(platform::TovanServiceCode code, const std::string& report) override {
        hear("report", static_cast<int>(code), report);
    }
    void isTovanInOutStateChanged(platform::InOutState state) override {
        hear("inOut", static_cast<int>(state));
    }
    void isUserArrived() override { hear("arrived"); }
    void isNavigationRouteChanged(const std::vector<platform::NavigationRouteEntry>& route) override {
        hear("route", route.size());
    }
    void isNavigationRouteFailed(platform::NavigationRouteFailureReason reason) override {
        hear("failed", static_cast<int>(reason));
    }
    void isUserGuidanceOut() override { hear("guidanceOut"); }
    void isWaypointChanged(const std::vector<std::vector<double>>& waypoints) override {
        hear("waypoints", waypoints.size());
    }
    void onBuildingLevelChangeStateChanged(platform::BuildingLevelChangeState, const std::string&,
                                           const std::string&, const std::string&, const std::string&,
                                           std::int64_t) override {
        hear("levelChange");
    }

    Record record;
    std::function<void()> reaction = [] {};

private:
    template <class... Values>
    void hear(const Values&... values) {
        record.add(values...);
        reaction();
    }
};

}  // namespace oska::fakes
