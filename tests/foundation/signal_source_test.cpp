#include "oska/foundation/signal_source.h"

#include <gtest/gtest.h>

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
    using Lines = std::vector<std::string>;
    fakes::OutputCapture output;
    struct Case {
        int state;
        bool authorized;
        std::string line;
    };
    const std::string refused =
        "[ERROR] [DapoView] (checkBLEAuthorized) : bluetooth authorization denied or restricted";
    const std::string unknown =
        "[WARN]  [DapoView] (checkBLEAuthorized) : unknown bluetooth authorization state";
    for (const auto& [state, authorized, line] :
         {Case{0, true, ""}, {1, false, refused}, {2, false, refused}, {3, true, ""}, {4, false, unknown}}) {
        EXPECT_EQ(checkBLEAuthorized(Bluetooth(state), Log("DapoView")), authorized) << state;
        EXPECT_EQ(output.take(), line.empty() ? Lines{} : Lines{line});
    }
}

}  // namespace
}  // namespace oska
