#include "oska/foundation/signal_source.h"

#include <gtest/gtest.h>

#include "adapters/virtual/virtual_platform.h"
#include "oska/foundation/generator_run.h"
#include "tests/fakes/output_capture.h"

namespace oska {
namespace {

TEST(ServiceId, IsAsciiLettersDigitsUnderscoresAndHyphens) {
    for (const auto* id : {"abc_DEF-9", "a", "-", "_"}) EXPECT_TRUE(isValidServiceId(id)) << id;
    for (const auto* id : {"", " ", " a", "a ", "a\n", "a b", "a.b", "a/b", "\u00e9"}) {
        EXPECT_FALSE(isValidServiceId(id)) << id;
    }
}

struct Bluetooth : platform::BluetoothAuthorization {
    explicit Bluetooth(int rawValue) : state(static_cast<platform::BluetoothAuthorizationState>(rawValue)) {}
    platform::BluetoothAuthorizationState authorization() const override { return state; }
    platform::BluetoothAuthorizationState state;
};

TEST(BluetoothCheck, LetsThroughWhatIsAllowedOrNotYetAsked) {
    fakes::OutputCapture output;
    const std::string refused =
        "[ERROR] [DapoView] (checkBLEAuthorized) : bluetooth authorization denied or ";
    const std::string lines[] = {
        "", refused + "restricted", refused + "restricted", "",
        "[WARN]  [DapoView] (checkBLEAuthorized) : unknown bluetooth authorization state"};
    for (int state = 0; state <= 4; ++state) {
        const auto& line = lines[state];
        EXPECT_EQ(checkBLEAuthorized(Bluetooth(state), Log("DapoView")), line.empty()) << state;
        EXPECT_EQ(output.take(), std::vector<std::string>(line.empty() ? 0 : 1, line));
    }
}

struct Thrower : platform::BluetoothAuthorization, platform::RFDGenerator {
    platform::BluetoothAuthorizationState authorization() const override { throw 1; }
    platform::RfdAvailability checkIsAvailableRfd() override { return {true, ""}; }
    void setScanMode(platform::ScanMode) override {}
    void setDelegate(std::weak_ptr<platform::RFDGeneratorDelegate>) override {
        ++delegatesSet;
        if (inStop) throw 1;
    }
    void setPressureProvider(std::function<float()>) override {}
    void generateRfd(const platform::RfdOptions&) override { throw 1; }
    void generateReplayRfd() override {}
    void stopRfdGeneration() override {
        if (inStop) inStop();
        throw 1;
    }
    int delegatesSet = 0;
    std::function<void()> inStop;  // from then on it does not let go, either
};

TEST(SignalSource, TakesProvidersThatThrowForOnesThatCannot) {
    const auto thrower = std::make_shared<Thrower>();
    EXPECT_FALSE(checkBLEAuthorized(*thrower, Log("DapoView")));

    virtual_world::VirtualPlatform world{platform::WallTime()};
    auto platform = world.platform();
    std::vector<platform::RFDGeneratorFactory> factories{
        [] { return nullptr; }, []() -> std::shared_ptr<platform::RFDGenerator> { throw 1; },
        [&] { return thrower; }};
    platform.makeRFDGenerator = [&] { return factories.back()(); };
    platform::install(platform);
    GeneratorRun run({.log = Log("DapoView"), .stopOperation = "stopGenerator"});
    for (; !factories.empty(); factories.pop_back()) {
        EXPECT_EQ(run.start(*run.claim(), {.id = "id"}).failure, ServiceErrorCode::GENERATOR_FAIL);
        EXPECT_TRUE(run.isIdle());
    }
    EXPECT_EQ(thrower->delegatesSet, 2) << "set at the start, let go of after it failed";

    factories = {[&] { return thrower; }};
    EXPECT_TRUE(run.start(*run.claim(), {.id = "id"}).failure);
    thrower->inStop = [&, isFirst = true]() mutable {
        if (std::exchange(isFirst, false)) {
            EXPECT_NO_THROW(run.stop());
        }
    };
    run.stop();
    EXPECT_TRUE(run.isIdle());
}

}  // namespace
}  // namespace oska
