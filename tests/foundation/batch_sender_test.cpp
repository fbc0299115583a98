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

class BatchSender : public testing::Test {
protected:
    BatchSender() { world_.server().onRequest(virtual_world::always(virtual_world::reply(201))); }

    void offer(std::initializer_list<std::int64_t> times) {
        for (const auto time : times) sender_.inputReceivedForce({time, {{"a", -60}}});
    }

    /// The mobile times of each batch that reached the server since the last call.
    std::vector<Times> batches() {
        world_.time().advanceBy(std::chrono::minutes(1));
        std::vector<Times> batches;
        const auto requests = world_.server().requests();
        for (; seen_ < requests.size(); ++seen_) {
            const auto& body = requests[seen_].request.body;
            const auto samples = json::decode<std::vector<platform::ReceivedForce>>(body.value_or(""));
            EXPECT_TRUE(samples);
            batches.emplace_back();
            for (const auto& sample : *samples) batches.back().push_back(sample.mobile_time);
        }
        return batches;
    }

    virtual_world::VirtualPlatform world_{{1'700'000'000'000, 0}};
    DapoBatchSender sender_{std::make_shared<OskaNetworkManager>(world_.platform())};
    fakes::OutputCapture output_;
    std::size_t seen_ = 0;
};

TEST_F(BatchSender, SendsWhenTheBatchSpansTenSecondsItsLastSampleIncluded) {
    offer({0, 4000, 9999});
    EXPECT_TRUE(batches().empty());
    offer({10'000, 10'500, 20'499});
    EXPECT_EQ(batches(), (std::vector<Times>{{0, 4000, 9999, 10'000}}));
    offer({50'000});
    EXPECT_EQ(batches(), (std::vector<Times>{{10'500, 20'499, 50'000}}));
    offer({90'000});
    EXPECT_TRUE(batches().empty()) << "a first sample never sends";
}

TEST_F(BatchSender, IgnoresSamplesThatHeardNothing) {
    sender_.inputReceivedForce({0, {}});
    offer({1000});
    sender_.inputReceivedForce({50'000, {}});
    offer({10'999});
    EXPECT_TRUE(batches().empty());
    offer({11'000});
    EXPECT_EQ(batches(), (std::vector<Times>{{1000, 10'999, 11'000}}));
}

TEST_F(BatchSender, MeasuresAnyStampsWithoutOverflow) {
    constexpr auto FIRST = std::numeric_limits<std::int64_t>::min();
    constexpr auto LAST = std::numeric_limits<std::int64_t>::max();
    offer({FIRST, LAST});
    EXPECT_EQ(batches(), (std::vector<Times>{{FIRST, LAST}}));
}

TEST_F(BatchSender, FlushSendsOnceAndResetForgets) {
    sender_.flush();
    offer({1, 2});
    sender_.reset();
    offer({3, 4, 5});
    sender_.flush();
    sender_.flush();
    EXPECT_EQ(batches(), (std::vector<Times>{{3, 4, 5}}));
}

TEST_F(BatchSender, LogsAFailedUploadAndLosesIt) {
    world_.server().onRequest(virtual_world::always(virtual_world::nothing()));
    offer({1});
    sender_.flush();
    batches();
    EXPECT_EQ(output_.take(),
              std::vector<std::string>{"[ERROR] [DapoBatchSender] (postRFD) 500, Request failed"});
}

TEST_F(BatchSender, PostsToTheEndpointOfTheMomentOfSending) {
    offer({1});
    platform::TovanNetworkConstants::setOnPremise("http://other:1/");
    sender_.flush();
    batches();
    const auto request = world_.server().requests().back().request;
    EXPECT_EQ(request.url.absoluteString(), platform::TovanNetworkConstants::getRecRfdURL());
    EXPECT_TRUE(request.url.absoluteString().starts_with("http://other:1/"));
    EXPECT_TRUE(output_.take().empty()) << "success is not logged";
}

}  // namespace
}  // namespace oska
