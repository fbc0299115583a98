#include "adapters/virtual/recorded_radio.h"

#include <gtest/gtest.h>

#include <fstream>
#include <vector>

#include "adapters/virtual/virtual_platform.h"

namespace oska::virtual_world {
namespace {

using namespace std::chrono_literals;
using Times = std::vector<std::int64_t>;

struct Listener : platform::RFDGeneratorDelegate {
    void onRfdResult(platform::RFDGenerator&, platform::ReceivedForce sample) override {
        times.push_back(sample.mobile_time);
    }
    void onRfdError(platform::RFDGenerator&, int, const std::string&) override {}
    void onRfdEmptyMillis(platform::RFDGenerator&, double) override {}
    Times times;
};

struct Case {
    std::string text;
    std::string reason;
    Times times = {};  // heard within two seconds
};

TEST(RecordedRadio, PlaysAtTheWalksOwnPaceOrSaysWhyNot) {
    VirtualPlatform world({});
    platform::install(world.platform());
    const auto path = testing::TempDir() + "recorded_radio.jsonl";
    for (const auto& [text, reason, times] : std::vector<Case>{
             {"{\"mobile_time\": 7, \"action\": \"tap\"}\n \n", ": holds no sample"},
             {"\n{\"mobile_time\": 1.5}", ":2: mobile_time: expected an integer, found 1.5"},
             {"{\"mobile_time\": 5000, \"rfs\": {\"a\": -60.5}}\n\n{\"mobile_time\": 6000, \"rfs\": {}}\n"
              "{\"mobile_time\": 5500, \"rfs\": {}}\n{\"mobile_time\": 6501, \"rfs\": {}}",
              "",
              {5000, 6000, 5500}}}) {
        std::ofstream(path) << text;
        const RecordedRadio radio(path);
        world.time().advanceBy(1h);  // the walk waits for the first generator
        const auto generator = radio.factory()();
        const auto listener = std::make_shared<Listener>();
        generator->setDelegate(listener);
        generator->generateRfd({});
        EXPECT_EQ(generator->checkIsAvailableRfd().message, reason.empty() ? "" : path + reason);
        world.time().advanceBy(2000ms);
        EXPECT_EQ(listener->times, times);
    }
}

}  // namespace
}  // namespace oska::virtual_world
