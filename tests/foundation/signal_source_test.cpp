#include "oska/foundation/signal_source.h"

#include <gtest/gtest.h>

#include "adapters/virtual/virtual_platform.h"
#include "oska/foundation/generator_run.h"
#include "tests/fakes/output_capture.h"
#include "tests/fakes/scripted_generator.h"

namespace oska {
namespace {

TEST(ServiceId, IsAsciiLettersDigitsUnderscoresAndHyphens) {
    for (const auto* id : {"abc_DEF-9", "a", "-", "_"}) EXPECT_TRUE(isValidServiceId(id)) << id;
    for (const auto* id : {"", " a", "a\n", "a.b", "a/b", "\u00e9"}) EXPECT_FALSE(isValidServiceId(id)) << id;
}

TEST(BluetoothCheck, LetsThroughWhatIsAllowedOrNotYetAsked) {
    virtual_world::SettableBluetooth bluetooth;
    fakes::OutputCapture output;
    const std::string refused =
        "[ERROR] [DapoView] (checkBLEAuthorized) : bluetooth authorization denied or restricted";
    const std::string unknown =
        "[WARN]  [DapoView] (checkBLEAuthorized) : unknown bluetooth authorization state";
    const std::vector<std::string> lines[]{{}, {refused}, {refused}, {}, {unknown}};
    for (int state = 0; state <= 4; ++state) {
        bluetooth.set(static_cast<platform::BluetoothAuthorizationState>(state));
        EXPECT_EQ(checkBLEAuthorized(bluetooth, Log("DapoView")), lines[state].empty()) << state;
        EXPECT_EQ(output.take(), lines[state]);
    }
}

struct UnreadableBluetooth : platform::BluetoothAuthorization {
    platform::BluetoothAuthorizationState authorization() const override { throw 1; }
};

struct Thrower : fakes::ScriptedGenerators::Generator {
    using Generator::Generator;
    void setDelegate(std::weak_ptr<platform::RFDGeneratorDelegate>) override {
        ++delegatesSet;
        if (holdsOn) throw 1;
    }
    int delegatesSet = 0;
    bool holdsOn = false;
};

TEST(SignalSource, TakesProvidersThatThrowForOnesThatCannot) {
    EXPECT_FALSE(checkBLEAuthorized(UnreadableBluetooth(), Log("DapoView")));

    fakes::ScriptedGenerators script;
    script.inGenerate = script.inStop = [](auto&) { throw 1; };
    const auto thrower = std::make_shared<Thrower>(script);
    virtual_world::VirtualPlatform world{platform::WallTime()};
    auto platform = world.platform();
    std::vector<platform::RFDGeneratorFactory> factories{
        [&] { return thrower; }, [] { return nullptr; },
        []() -> std::shared_ptr<platform::RFDGenerator> { throw 1; }, [&] { return thrower; }};
    platform.makeRFDGenerator = [&] { return factories.back()(); };
    platform::install(platform);
    GeneratorRun run({.log = Log("DapoView"), .stopOperation = "stopGenerator"});
    for (; factories.size() > 1; factories.pop_back()) {
        EXPECT_EQ(run.start(*run.claim(), {.id = "id"}).failure, ServiceErrorCode::GENERATOR_FAIL);
        EXPECT_TRUE(run.isIdle());
    }
    EXPECT_EQ(thrower->delegatesSet, 2) << "set at the start, let go of after it failed";

    EXPECT_TRUE(run.start(*run.claim(), {.id = "id"}).failure);
    thrower->holdsOn = true;
    script.inStop = [&, isFirst = true](auto&) mutable {
        if (std::exchange(isFirst, false)) {
            EXPECT_NO_THROW(run.stop());
        }
        throw 1;
    };
    run.stop();
    EXPECT_TRUE(run.isIdle());
}

}  // namespace
}  // namespace oska
