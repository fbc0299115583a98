#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "oska/dapo/dapo_view.h"
#include "oska/pelio/pelio_service_manager.h"

namespace oska::fakes {

using Events = std::vector<std::string>;

/// The callbacks that a host has received, each as one text. Runs `reaction` inside each. Threads: any.
class HostEvents {
public:
    Events take() {
        const std::lock_guard lock(mutex_);
        return std::exchange(events_, {});
    }

    std::function<void(const std::string& event)> reaction = [](const auto&) {};

protected:
    void hear(const std::string& event) {
        {
            const std::lock_guard lock(mutex_);
            events_.push_back(event);
        }
        reaction(event);
    }
    template <class Code>
    void hearOutcome(const std::string& of, bool success, std::optional<Code> code) {
        hear(of + (success ? " true" : "") + (code ? " " + std::string(caseName(*code)) : ""));
    }

private:
    std::mutex mutex_;
    Events events_;
};

class PelioHost : public PelioServiceManagerDelegate, public HostEvents {
public:
    void onInitSuccess(PelioServiceManager& service, bool success,
                       std::optional<PelioInitErrorCode> code) override {
        sender = &service;
        hearOutcome("init", success, code);
    }
    void onPelioSuccess(PelioServiceManager&, bool success, std::optional<PelioErrorCode> code) override {
        hearOutcome("start", success, code);
    }
    void onPelioResult(PelioServiceManager&, const PelioResult& result) override {
        hear("result " + std::to_string(result.mobile_time) + " at " +
             std::to_string(static_cast<int>(result.x)));
    }
    void onPelioMapImageData(PelioServiceManager&, std::int64_t levelId, const PelioMapImage&) override {
        hear("map " + std::to_string(levelId));
    }

    PelioServiceManager* sender = nullptr;  ///< of the last onInitSuccess
};

class DapoHost : public DapoViewDelegate, public HostEvents {
public:
    void onInitSuccess(DapoView&, bool success, std::optional<DapoInitErrorCode> code) override {
        hearOutcome("init", success, code);
    }
    void onDapoSuccess(DapoView&, bool success, std::optional<DapoErrorCode> code) override {
        hearOutcome("start", success, code);
    }
    void onClick(DapoView&, const std::vector<DapoWard>& wards) override { hear("click" + names(wards)); }
    void onDapoSelectionChanged(DapoView&, const std::vector<DapoWard>& wards) override {
        hear("changed" + names(wards));
    }
    void onDapoMapImageData(DapoView&, std::int64_t levelId, const DapoMapImage&) override {
        hear("map " + std::to_string(levelId));
    }

private:
    static std::string names(const std::vector<DapoWard>& wards) {
        std::string names;
        for (const auto& ward : wards) names += " " + ward.name;
        return names;
    }
};

}  // namespace oska::fakes
