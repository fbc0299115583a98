#include "oska/foundation/batch_sender.h"

#include <gtest/gtest.h>

#include <limits>

#include "adapters/virtual/virtual_platform.h"
#include "oska/json/json.h"
#include "oska/platform/quenlo_tovan.h"
#include "tests/fakes/output_capture.h"

namespace oska {
namespace {

using Times = std::vector<std::int64_t>;

/// Collects the mobile times of each batch that reaches the server.
class BatchSender : public testing::Test {
protected:
    BatchSender() {
        world_.server().onRequest([this](const platform::HttpRequest& request) {
            url_ = request.url.absoluteString();
            const auto samples = json::decode<std::vector<platform::ReceivedForce>>(*request.body);
            batches_.emplace_back();
            for (const auto& sample : *samples) batches_.back().push_back(sample.mobile_time);
            return answer_;
        });
    }

    std::vector<Times> batchesOf(const Times& offered, bool flushes = false) {
        for (const auto time : offered) sender_.inputReceivedForce({time, {{"a", -60}}});
        for (int i = 0; flushes && i < 2; ++i) sender_.flush();
        world_.time().advanceBy(std::chrono::minutes(1));
        return std::exchange(batches_, {});
    }

    virtual_world::VirtualPlatform world_{{1'700'000'000'000, 0}};
    DapoBatchSender sender_{std::make_shared<OskaNetworkManager>(world_.platform())};
    fakes::OutputCapture output_;
    virtual_world::ScriptedAnswer answer_ = virtual_world::reply(201);
    std::vector<Times> batches_;
    std::string url_;
};

TEST_F(BatchSender, SendsWhenWhatWasHeardSpansTenSecondsItsLastSampleIncluded) {
    using Batches = std::vector<Times>;
    sender_.inputReceivedForce({-50'000, {}});
    EXPECT_EQ(batchesOf({0, 4000, 9999}), Batches());
    sender_.inputReceivedForce({50'000, {}});
    EXPECT_EQ(batchesOf({10'000, 10'500, 20'499, 50'000, 90'000, 0}),
              (Batches{{0, 4000, 9999, 10'000}, {10'500, 20'499, 50'000}}));
    sender_.reset();
    const Times farApart{std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()};
    EXPECT_EQ(batchesOf(farApart), Batches{farApart});
}

TEST_F(BatchSender, FlushSendsOnceToTheEndpointOfTheMomentAndLogsAFailureAlone) {
    sender_.flush();
    platform::TovanNetworkConstants::setOnPremise("http://other:1//");
    EXPECT_EQ(batchesOf({3, 4, 5}, true), (std::vector<Times>{{3, 4, 5}}));
    EXPECT_EQ(url_, "http://other:1/v2/recordings/rfds");
    EXPECT_TRUE(output_.take().empty());
    answer_ = virtual_world::nothing();
    EXPECT_EQ(batchesOf({6}, true), std::vector<Times>{{6}});
    EXPECT_EQ(output_.take(),
              std::vector<std::string>{"[ERROR] [DapoBatchSender] (postRFD) 500, Request failed"});
}

}  // namespace
}  // namespace oska
