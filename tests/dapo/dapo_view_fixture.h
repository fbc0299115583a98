#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "oska/dapo/dapo_view.h"
#include "oska/platform/notification_center.h"
#include "tests/fakes/output_capture.h"
#include "tests/fakes/site_server.h"

namespace oska {

using Events = std::vector<std::string>;

/// Writes down what it hears, and does what a test asks for inside a callback.
class DapoHost : public DapoViewDelegate {
public:
    void onInitSuccess(DapoView&, bool success, std::optional<DapoInitErrorCode> code) override {
        hear("init " + (success ? "true" : std::string(caseName(*code))));
    }
    void onDapoSuccess(DapoView&, bool success, std::optional<DapoErrorCode> code) override {
        hear("start " + (success ? "true" : std::string(caseName(*code))));
    }
    void onClick(DapoView&, const std::vector<DapoWard>& dapoWards) override {
        hear("click" + names(dapoWards));
    }
    void onDapoSelectionChanged(DapoView&, const std::vector<DapoWard>& dapoWards) override {
        hear("changed" + names(dapoWards));
    }
    void onDapoMapImageData(DapoView&, std::int64_t levelId, const DapoMapImage&) override {
        hear("map " + std::to_string(levelId));
    }

    Events take() { return std::exchange(events_, {}); }

    std::function<void(const std::string& event)> reaction = [](const auto&) {};

private:
    static std::string names(const std::vector<DapoWard>& wards) {
        std::string names;
        for (const auto& ward : wards) names += " " + ward.name;
        return names;
    }

    void hear(const std::string& event) {
        events_.push_back(event);
        reaction(event);
    }

    Events events_;
};

/// A Dapo view in a virtual world, over a host view of 390 by 844 points, for a site with the one ward
/// "lobby-a".
class DapoViewTest : public testing::Test {
protected:
    explicit DapoViewTest(platform::ViewPeerFactory makeViewPeer = {},
                          platform::RFDGeneratorFactory makeRFDGenerator = {}) {
        auto platform = world_.platform();
        platform.makeViewPeer = std::move(makeViewPeer);
        if (makeRFDGenerator) platform.makeRFDGenerator = std::move(makeRFDGenerator);
        platform::install(std::move(platform));
        view_ = DapoView::create();
        site_.publish("v1", fakes::DAPO_DOCUMENT);
        view_->setDelegate(host_);
        output_.take();
    }

    void initialize(std::string id = "demo") {
        view_->initialize({.id = std::move(id), .sectorId = 12, .baseURL = "http://uploads"});
    }

    void makeReady() {
        view_->configureFrame({.to = hostView_});
        initialize();
        settle();
        EXPECT_EQ(host_->take(), (Events{"map 10", "init true"}));
    }

    void makeRunning() {
        makeReady();
        view_->startService();
        EXPECT_EQ(host_->take(), Events{"start true"});
        output_.take();
    }

    void settle() { pass(std::chrono::minutes(2)); }
    void pass(std::chrono::nanoseconds span) { world_.time().advanceBy(span); }

    bool hear(double strength = -60) {
        return world_.source().send({world_.time().now().milliseconds, {{"Lobby-A ", strength}}});
    }
    /// As many samples as it takes to be detected, all at this instant.
    void detect() {
        for (int i = 0; i < 6; ++i) hear();
    }

    std::string lastLine() {
        const auto lines = output_.take();
        return lines.empty() ? "" : lines.back();
    }

    /// The bodies of the uploads so far.
    std::vector<std::string> uploads() {
        std::vector<std::string> bodies;
        for (const auto& seen : world_.server().requests()) {
            if (seen.request.method == "POST") bodies.push_back(*seen.request.body);
        }
        return bodies;
    }

    virtual_world::VirtualPlatform world_{{1'700'000'000'000, 0}};
    fakes::SiteServer site_{world_.server()};
    fakes::OutputCapture output_;
    std::shared_ptr<DapoHost> host_ = std::make_shared<DapoHost>();
    std::shared_ptr<views::View> hostView_ = views::View::create({0, 0, 390, 844});
    std::shared_ptr<DapoView> view_;
};

}  // namespace oska
