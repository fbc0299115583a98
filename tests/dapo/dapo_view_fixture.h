#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "oska/dapo/dapo_view.h"
#include "oska/platform/notification_center.h"
#include "tests/fakes/output_capture.h"
#include "tests/fakes/recording_hosts.h"
#include "tests/fakes/site_server.h"

namespace oska {

using fakes::Events;

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

    void initialize() { view_->initialize({.id = "demo", .sectorId = 12, .baseURL = "http://uploads"}); }

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

    bool hear() { return world_.source().send({world_.time().now().milliseconds, {{"Lobby-A ", -60}}}); }
    /// As many samples as it takes to be detected, all at this instant.
    void detect() {
        for (int i = 0; i < 6; ++i) hear();
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
    std::shared_ptr<fakes::DapoHost> host_ = std::make_shared<fakes::DapoHost>();
    std::shared_ptr<views::View> hostView_ = views::View::create({0, 0, 390, 844});
    std::shared_ptr<DapoView> view_;
};

}  // namespace oska
